#pragma once

#include "document/formats/TrackInfo.h"
#include "tools/track/LoadedTrack.h"

#include <QSize>

/// The transform with which the editor saves the paths of a track.
WorldTransform WorldOf(const TrackInfo& info);

/// The size in pixels of a track shown at 100 %, to which segment parameters and ruler marks refer.
QSize ShownSizeOf(const TrackInfo& info);

/// Computes the ruler marks of the paths.
void ComputeRulerMarks(const TrackInfo& info, std::vector<TrackPath>& paths);

/// Saves a track with other paths and their ruler marks as the editor does: atomically, as a binary track
/// even if the original is a text track. The target may be the original.
/// @throws Failure: Unreadable when the original is incomplete, or has content that a binary track cannot
///         store; Unwritable
void SavePaths(const LoadedTrack& original, std::vector<TrackPath> paths, const std::string& target);
