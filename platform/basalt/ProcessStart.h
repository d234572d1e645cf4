#pragma once

#include <string>
#include <vector>

/// The words of the command line in UTF-8, without the program's name.
/// @param count, words as `main` has them
[[nodiscard]] std::vector<std::string> CommandLineWords(int count, char** words);

/// The signals by which an operator or the system asks a program to stop.
[[nodiscard]] std::vector<int> StopSignals();
