#pragma once

#include <stdexcept>
#include <string>

/// The exit codes of the program. Scripts depend on these numbers.
enum class ExitCode {
    Done = 0,       ///< done, and nothing found
    Found = 1,      ///< errors, differences or damage found and reported
    Misused = 2,    ///< invalid arguments
    Unreadable = 3, ///< an input cannot be read
    Unwritable = 4  ///< an output cannot be written; an existing file is unchanged
};

/// Ends a command. The message names the operation, the file and the reason.
class Failure final : public std::runtime_error {
  public:
    Failure(ExitCode code, const std::string& message) : std::runtime_error(message), code(code) {}

    [[nodiscard]] ExitCode Code() const { return code; }

  private:
    ExitCode code;
};
