#pragma once

#include "document/formats/CsvScan.h"
#include "document/formats/Heights.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// Reads single heights of a text track from its file. It has to know where rows start, which Prepare finds
/// in short slices of time; it keeps a few bytes for thousands of cells.
class TextHeights {
  public:
    /// @param columns of the height map, at least 1
    /// @throws std::runtime_error when the file cannot be read
    TextHeights(std::string file, int columns);

    /// Continues finding rows for about that time. @return whether there are more to find
    /// @throws std::exception when the file cannot be read on
    bool Prepare(std::chrono::microseconds time);

    /// The height of a cell, which is unknown while its row is not found yet.
    /// @throws std::exception when the file cannot be read
    [[nodiscard]] CellHeight At(int column, int row) const;

  private:
    /// Skips one line of the file. @return false after the height map's last
    bool TakeLine();

    std::string file;
    int rowsPerStart;
    std::unique_ptr<CsvScan> scan; ///< null when all rows are found
    bool inMap = false;
    int rowCount = 0;                  ///< found so far
    std::vector<std::uint64_t> starts; ///< the byte that every so many rows' first starts at
};
