#pragma once

#include "document/formats/Converter.h"
#include "document/formats/TrackInfo.h"
#include "document/formats/TrackPath.h"

#include <QImage>

#include <string>
#include <vector>

/// A track file as the editor's converters read it, all but its height map, which the functions below read.
struct LoadedTrack {
    std::string file;
    TrackEncoding encoding = TrackEncoding::Text;
    TrackInfo info; ///< minHeight is above maxHeight when no cell is measured
    std::vector<TrackPath> paths;
    bool hasPaths = true; ///< false for a text track without a path section

    /// Whether any cell of the map is measured.
    [[nodiscard]] bool IsMeasured() const { return info.minHeight <= info.maxHeight; }
};

/// @throws Failure with ExitCode::Unreadable, naming the reason, unless this is a file that can be read
void RequireFile(const std::string& file);

/// Whether a text track may lack the section with its paths. The editor opens none that does.
enum class PathSection { Needed, Optional };

/// @throws Failure with ExitCode::Unreadable, naming the file and the reason
LoadedTrack LoadTrack(const std::string& file, PathSection section = PathSection::Needed);

/// The world heights of all cells, row-major; NaN for a cell without a measurement. Those of a text track are
/// as the file has them.
/// @throws Failure with ExitCode::Unreadable
std::vector<double> LoadHeights(const LoadedTrack& track);

/// The world heights that the raw values of a track hold: those of a text track are rounded as they are when
/// it is saved.
/// @throws Failure with ExitCode::Unreadable
std::vector<double> LoadStoredHeights(const LoadedTrack& track);

/// The map in colours, as the editor shows it.
/// @throws Failure with ExitCode::Unreadable, also for a map without two different heights
QImage LoadImage(const LoadedTrack& track);
