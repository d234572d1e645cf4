#pragma once

#include "basalt/AtomicFile.h"

#include <optional>
#include <string>
#include <string_view>

/// Where a command's result goes: standard output, or a file that appears under its name only when complete.
class TextOutput final {
  public:
    /// @param file none for standard output
    /// @throws Failure with ExitCode::Unwritable
    explicit TextOutput(const std::optional<std::string>& file = std::nullopt);

    void Write(std::string_view text);
    /// Puts the file in place. Without this call there is none.
    /// @throws Failure with ExitCode::Unwritable when anything could not be written
    void Finish();

  private:
    [[noreturn]] void Fail() const;

    std::string name; ///< for messages
    std::optional<AtomicFile> target;
    bool failed = false;
};
