#pragma once

#include "IndependentTrack.h"
#include "canvas/qmaskwidget.h"

#include <string>

// Invariants that hold after any user input. Each check fails the running test with a description.

/// The largest number that a field accepts while typing: five digits.
constexpr int kMaxTyped = 99999;

/// Indexes are in range, the lists of a path are as long as its points, all numbers are finite.
void CheckEditing(const QMaskWidget& canvas, bool rulerShown);

/// A saved track has `map` and exactly `paths` with their ruler marks, at the positions that follow from the
/// map's resolutions and offsets.
/// @param file the complete content
void CheckSaved(const std::string& file, const independent::Track& map, const std::vector<TrackPath>& paths);

/// A folder has no more kept copies than allowed, and an independent reader can read those of unsaved paths.
/// Others may be as damaged as their originals.
/// @return the number of copies
unsigned CheckKept(const std::string& folder);

/// Whether the text of an "Error" box is one of the system's messages.
bool IsKnownMessage(const std::string& text);
