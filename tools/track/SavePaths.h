#pragma once

#include "document/formats/TrackInfo.h"
#include "tools/track/LoadedTrack.h"

#include <QSize>

/// The factors by which the editor saves the paths of a track.
WorldTransform WorldOf(const TrackInfo& info);

/// The pixels in which segment parameters and ruler marks of a track are measured.
QSize ShownSizeOf(const TrackInfo& info);

/// Puts the ruler marks into paths of a track.
void ComputeRulerMarks(const TrackInfo& info, std::vector<TrackPath>& paths);

/// Writes a track with other paths, and the ruler marks computed for them, as the editor does: as a binary
/// track that appears at once, whatever the encoding of the original. The target may be the original.
/// @throws Failure: Unreadable when the original is not whole, or has what a binary track does not hold;
///         Unwritable
void SavePaths(const LoadedTrack& original, std::vector<TrackPath> paths, const std::string& target);
