#pragma once

#include "document/formats/NumberText.h"
#include "document/formats/PackedDecimal.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

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

    /// Logs at INFO where the line is and how it begins: what an error that follows is about. Nothing for a
    /// line of no file.
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

    /// The fields joined by commas. A comma that stood inside a field is a semicolon here: it too ends a
    /// number and is in no keyword, so that whatever the line held, this splits at every comma.
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
    /// @return false, with nothing taken, when it is something else; `number` is untouched then
    [[gnu::always_inline]] bool NextPacked(PackedDecimal& number) {
        const char* const taken =
            end - at < PackedDecimal::kBytes ? nullptr : PackedDecimal::Read(at, number);
        if (taken == nullptr)
            return false;
        at = taken + 1; // behind a comma; there is always another field, be it empty
        return true;
    }

    /// Takes the next field as a number by ToDouble. @return false, with `value` untouched, for an empty
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
