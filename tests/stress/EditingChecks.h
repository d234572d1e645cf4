#pragma once

#include "IndependentTrack.h"
#include "canvas/qmaskwidget.h"

#include <string>

// What holds whatever the operator does. Each check fails the test that runs and says what is wrong.

/// The largest number that a field lets through while it is typed: five digits.
constexpr int kLargestTyped = 99999;

/// Indexes lie within what they count, the lists of a path are as long as its points, nothing is infinite.
void CheckEditing(const QMaskWidget& canvas, bool rulerShown);

/// A saved track holds `map` and exactly `paths`, with their ruler marks, in the places that the map's
/// resolutions and offsets give them.
/// @param file the whole content
void CheckSaved(const std::string& file, const independent::Track& map, const std::vector<TrackPath>& paths);

/// There are not too many kept copies in a folder, and those of unsaved paths are complete, as the tests' own
/// reader finds. Others may be damaged as their files were.
/// @return how many there are
unsigned CheckKept(const std::string& folder);

/// Whether a text of the "Error" box is one of the system's own.
bool IsKnownMessage(const std::string& text);
