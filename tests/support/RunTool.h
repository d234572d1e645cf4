#pragma once

#include <string>

/// Runs a shell command and returns its standard output and error, and "exit N" when it fails.
std::string RunTool(const std::string& command);
