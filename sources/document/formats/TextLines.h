#pragma once

#include "basalt/InputFile.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Reads a file line by line, in big blocks, without a copy of a line.
class TextLines {
  public:
    /// A longer line fails the read. No row of a height map comes near it (it holds millions of cells), while
    /// a file without line feeds, however large, is given up before it fills the memory.
    static constexpr std::size_t kLongestLine = std::size_t{64} << 20;

    /// Opens a regular file; a folder, pipe or device counts as a file that is not there.
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

    /// Hands out the next line without its line feed and without a carriage return before it. The bytes stay
    /// until the next call. The rest behind the last line feed is a line unless it is empty.
    /// @return false at the end of the file
    /// @throws std::length_error for a line that is too long
    /// @throws std::runtime_error when the file cannot be read on
    [[nodiscard]] bool Next(std::string_view& line);

  private:
    bool Refill();
    std::string_view TakeLine(std::size_t length, std::size_t lineEnd);

    InputFile file;
    std::uint64_t fileSize = 0;
    std::uint64_t position = 0;
    std::uint64_t lineNumber = 0;
    std::vector<char> block;
    std::size_t begin = 0;    ///< where the bytes not yet handed out start in the block
    std::size_t end = 0;      ///< behind the last byte read
    std::size_t searched = 0; ///< bytes from `begin` known to hold no line feed
};
