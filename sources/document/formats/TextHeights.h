#pragma once

#include "document/formats/CsvScan.h"
#include "document/formats/Heights.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

/// Reads single heights of a text track from its file. It has to know where rows start, which Prepare finds
/// in short slices of time; it keeps a few bytes for thousands of cells. The file is open only during a call,
/// so that a save can replace it on every system.
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
    /// Skips one line of the file.
    void TakeLine(CsvScan& scan);

    std::string file;
    int rowsPerStart;
    bool isComplete = false;           ///< all rows are found
    bool inMap = false;                ///< the header line of the height map is found
    std::uint64_t nextLine = 0;        ///< the byte of the file that the search continues at
    int rowCount = 0;                  ///< found so far
    std::vector<std::uint64_t> starts; ///< the byte that every so many rows' first starts at
};
