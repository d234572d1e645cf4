#pragma once

#include "document/formats/Converter.h"
#include "document/formats/TrackInfo.h"
#include "document/formats/TrackPath.h"

#include <QImage>

#include <string>
#include <vector>

/// The height range before any cell is read, as in the editor; the text converter widens it.
constexpr double kInitialMinHeight = 32768.0;
constexpr double kInitialMaxHeight = -32768.0;

/// A track file as the editor's converters read it, without its height map, which the functions below read.
struct LoadedTrack {
    std::string file;
    TrackEncoding encoding = TrackEncoding::Text;
    TrackInfo info; ///< minHeight is above maxHeight when no cell is measured
    std::vector<TrackPath> paths;
    bool hasPaths = true; ///< false for a text track without a path section

    /// Whether any cell of the map is measured.
    [[nodiscard]] bool IsMeasured() const { return info.minHeight <= info.maxHeight; }
};

/// @throws Failure with ExitCode::Unreadable, with the reason, if the file cannot be read
void RequireFile(const std::string& file);

/// Whether a text track may lack its path section. The editor does not open such a track.
enum class PathSection { Needed, Optional };

/// @throws Failure with ExitCode::Unreadable, with the file and the reason
LoadedTrack LoadTrack(const std::string& file, PathSection section = PathSection::Needed);

/// The world heights of all cells, row-major; NaN for a cell without a measurement. Those of a text track are
/// not rounded.
/// @throws Failure with ExitCode::Unreadable
std::vector<double> LoadHeights(const LoadedTrack& track);

/// The world heights of the raw values: those of a text track are rounded as when it is saved.
/// @throws Failure with ExitCode::Unreadable
std::vector<double> LoadStoredHeights(const LoadedTrack& track);

/// The map in colours, as the editor shows it.
/// @throws Failure with ExitCode::Unreadable, also for a map whose heights are all equal
QImage LoadImage(const LoadedTrack& track);
