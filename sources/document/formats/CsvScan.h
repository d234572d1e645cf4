#pragma once

#include "document/formats/CsvLine.h"
#include "document/formats/TextLines.h"

#include <cstdint>
#include <string>
#include <string_view>

/// Goes once through a text track file, line by line, split into fields.
class CsvScan {
  public:
    explicit CsvScan(const std::string& path) : lines(path) {}

    [[nodiscard]] bool IsOpen() const { return lines.IsOpen(); }
    [[nodiscard]] std::uint64_t FileSize() const { return lines.FileSize(); }

    /// The byte that the next line starts at.
    [[nodiscard]] std::uint64_t Position() const { return lines.Position(); }
    /// Goes to the line that starts at a byte. @throws std::runtime_error when the file cannot be read there
    void MoveTo(std::uint64_t byte) { lines.MoveTo(byte); }

    /// The line that the last operation moved to; it stays until the next.
    [[nodiscard]] const CsvLine& Line() const { return line; }

    /// Moves to the next line that is not empty. @return false at the end of the file
    [[nodiscard]] bool Next();

    /// Moves to the next line of a section. @return false at its "End" line and at the end of the file
    [[nodiscard]] bool NextInSection() { return Next() && !line.StartsWith("End"); }

    /// Moves to the next line whose first field contains the keyword. @return false at the end of the file
    [[nodiscard]] bool Find(std::string_view keyword);

    /// Passes over the very next line, whatever it holds, without splitting it.
    void Drop();

    /// Passes over a section's header line and moves to the line after it, which has no fields when it is
    /// empty or missing.
    void MoveBehindHeader();

  private:
    void Split(std::string_view text);

    TextLines lines;
    CsvLine line;
};
