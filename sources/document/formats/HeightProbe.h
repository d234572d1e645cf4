#pragma once

#include "basalt/FileFacts.h"
#include "document/formats/Heights.h"
#include "document/formats/TextHeights.h"
#include "document/formats/TrackInfo.h"

#include <chrono>
#include <cstdint>
#include <exception>
#include <optional>
#include <string>

/// Reads single heights of a track from its file when they are asked for, so that no map of them is held. The
/// heights of a file that was changed since it was opened are unknown. Nothing here throws.
class HeightProbe {
  public:
    HeightProbe() = default;
    HeightProbe(const HeightProbe&) = delete;
    HeightProbe& operator=(const HeightProbe&) = delete;

    /// Reads from this file from now on. @param info of the map that it holds
    void Open(const std::string& file, const TrackInfo& info);
    void Close();

    /// Continues reading what it needs to know about the file for about that time. @return whether there is
    /// more
    bool Prepare(std::chrono::microseconds time);

    /// The height of a cell; unknown for one that does not exist.
    [[nodiscard]] CellHeight At(int column, int row) const;

  private:
    void GiveUp(const std::exception& failure);
    /// The facts that change when a file is rewritten or replaced.
    static FileFacts IdentityOf(const std::string& file);
    [[nodiscard]] CellHeight BinaryHeightAt(int column, int row) const;

    std::string file;
    int columns = 0; ///< 0 while there is no file
    int rows = 0;
    double zResolution = 0.0;
    double zOffset = 0.0;
    FileFacts identity;
    std::optional<TextHeights> text; ///< none for a binary file
};
