#pragma once

#include <stdexcept>
#include <string>

/// How the program ends. Scripts depend on these numbers.
enum class ExitCode {
    Done = 0,       ///< all was done, and nothing was found
    Found = 1,      ///< errors, differences or damage were found, and reported
    Misused = 2,    ///< the arguments are not understood
    Unreadable = 3, ///< an input cannot be read
    Unwritable = 4  ///< an output cannot be written; what was there before is as it was
};

/// Ends a command. The message says what failed, in which file, and why.
class Failure final : public std::runtime_error {
  public:
    Failure(ExitCode code, const std::string& message) : std::runtime_error(message), code(code) {}

    [[nodiscard]] ExitCode Code() const { return code; }

  private:
    ExitCode code;
};
