#pragma once

#include <string>

/// Runs a shell command and gives what it prints on both outputs, and "exit N" when it fails.
std::string RunTool(const std::string& command);
