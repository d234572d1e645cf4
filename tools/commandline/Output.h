#pragma once

#include "basalt/AtomicFile.h"

#include <QImage>
#include <QJsonObject>

#include <optional>
#include <string>
#include <string_view>

/// Where a command's result goes: standard output, or a file that is written atomically.
class TextOutput final {
  public:
    /// @param file nullopt for standard output
    /// @throws Failure with ExitCode::Unwritable
    explicit TextOutput(const std::optional<std::string>& file = std::nullopt);

    void Write(std::string_view text);
    /// Completes the output; without this call no file is written.
    /// @throws Failure with ExitCode::Unwritable when any write failed
    void Finish();

  private:
    [[noreturn]] void Fail() const;

    std::string name; ///< for messages
    std::optional<AtomicFile> target;
    bool failed = false;
};

/// An object on one line: what every command prints with --json.
std::string JsonLine(const QJsonObject& object);

/// Writes a picture as a PNG file, atomically.
/// @throws Failure with ExitCode::Unwritable
void WritePicture(const QImage& picture, const std::string& file);
