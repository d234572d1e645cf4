#pragma once

#include "basalt/InputFile.h"
#include "document/formats/NumberText.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

/// Reads a file line by line, in big blocks, without a copy of a line.
class TextLines {
  public:
    /// A longer line fails the read. No row of a height map comes near it (64 MiB hold millions of cells),
    /// while a file without line feeds is rejected before it fills the memory.
    static constexpr std::size_t kMaxLineLength = std::size_t{64} << 20;

    /// Opens a regular file; a folder, pipe or device counts as a missing file.
    explicit TextLines(const std::string& path);

    [[nodiscard]] bool IsOpen() const { return file.IsOpen(); }

    /// The size of the file in bytes when it was opened.
    [[nodiscard]] std::uint64_t FileSize() const { return fileSize; }

    /// The byte of the file that the next line starts at.
    [[nodiscard]] std::uint64_t Position() const { return position; }

    /// The number of the line that Next returned last, the first being 1; not after MoveTo.
    [[nodiscard]] std::uint64_t LineNumber() const { return lineNumber; }

    /// Goes to the line that starts at a byte. @throws std::runtime_error when the file cannot be read there
    void MoveTo(std::uint64_t byte);

    /// Returns the next line without its line feed and without a carriage return before it. The bytes stay
    /// until the next call. The rest after the last line feed is a line unless it is empty.
    /// @return false at the end of the file
    /// @throws std::length_error for a line that is too long
    /// @throws std::runtime_error when the file cannot be read on
    [[nodiscard]] bool Next(std::string_view& line);

    /// Closes the file, so that it can be replaced on every system. Nothing is read afterwards.
    void Close() { file = InputFile(); }

  private:
    bool Refill();
    std::string_view TakeLine(std::size_t length, std::size_t lineEnd);

    InputFile file;
    std::uint64_t fileSize = 0;
    std::uint64_t position = 0;
    std::uint64_t lineNumber = 0;
    std::vector<char> block;
    std::size_t begin = 0;    ///< where the bytes not yet returned start in the block
    std::size_t end = 0;      ///< after the last byte read
    std::size_t searched = 0; ///< bytes from `begin` known to hold no line feed
};

/// The fields of one line of a text track file: separated by commas, with the double quote to hold a field
/// together and the backslash to escape, as boost::escaped_list_separator reads them.
class CsvLine {
  public:
    CsvLine() = default;
    CsvLine(const CsvLine&) = delete;
    CsvLine& operator=(const CsvLine&) = delete;

    /// Takes a line, given without its line end; its bytes must stay while the fields are used.
    /// @param lineNumber of the line in its file, for LogPlace; 0 when it is in none
    /// @throws boost::escaped_list_error for a bad escape anywhere in the line
    void Split(std::string_view line, std::uint64_t lineNumber = 0);

    /// Logs at INFO where the line is and how it begins, before an error about it. Nothing for a line of no
    /// file.
    void LogPlace() const;

    /// An empty line has no fields; any other has at least one.
    [[nodiscard]] bool HasFields() const { return hasFields; }

    [[nodiscard]] std::size_t FieldCount() const;

    /// The first field; empty when there is none.
    [[nodiscard]] std::string_view First() const { return text.substr(0, text.find(',')); }

    /// Whether the first field contains the keyword.
    [[nodiscard]] bool StartsWith(std::string_view keyword) const {
        return First().find(keyword) != std::string_view::npos;
    }

    /// The fields joined by commas. A comma inside a field is a semicolon here: it also ends a number and is
    /// in no keyword, so that every comma separates fields.
    [[nodiscard]] std::string_view Text() const { return text; }

  private:
    std::string_view text;
    std::string unquoted;
    std::uint64_t number = 0;
    bool hasFields = false;
};

/// Walks over the fields of a line from the first to the last.
class CsvFields {
  public:
    explicit CsvFields(const CsvLine& line)
        : at(line.Text().data()), end(at + line.Text().size()), left(line.HasFields()) {}

    /// Whether a field is left to take; the other operations need one.
    [[nodiscard]] bool HasNext() const { return left; }

    std::string_view Next() {
        const char* const start = at;
        MoveTo(FieldEnd());
        return {start, static_cast<std::size_t>(fieldEnd - start)};
    }

    /// Takes the next field when it is a packed decimal, as most cells of a height map are.
    /// @return false when it is anything else; nothing is taken then and `number` is unchanged
    [[gnu::always_inline]] bool NextPacked(PackedDecimal& number) {
        const char* const taken =
            end - at < PackedDecimal::kBytes ? nullptr : PackedDecimal::Read(at, number);
        if (taken == nullptr)
            return false;
        at = taken + 1; // after a comma there is always another field, even if empty
        return true;
    }

    /// Takes the next field as a number by ToDouble. @return false, with `value` unchanged, for an empty
    /// field
    bool NextNumber(double& value);

  private:
    [[nodiscard]] const char* FieldEnd() const {
        if (at == end)
            return end;
        const void* const comma = std::memchr(at, ',', static_cast<std::size_t>(end - at));
        return comma != nullptr ? static_cast<const char*>(comma) : end;
    }

    void MoveTo(const char* taken) {
        fieldEnd = taken;
        left = taken != end;
        at = left ? taken + 1 : end;
    }

    const char* at;
    const char* end;
    const char* fieldEnd = nullptr;
    bool left;
};

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

    /// Skips the next line without splitting it, even an empty one.
    void Drop();

    /// Skips a section's header line and moves to the line after it, which has no fields when it is empty or
    /// missing.
    void MoveAfterHeader();

  private:
    void Split(std::string_view text);

    TextLines lines;
    CsvLine line;
};
