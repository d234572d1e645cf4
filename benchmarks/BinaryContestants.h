#pragma once

#include "Figures.h"

/// binary-load FILE: ReadInfo and ReadImage of a binary track.
/// binary-limit FILE WIDTH HEIGHT: reading the file in blocks and clearing an image of that size.
/// ramp SIDE: colours for SIDE x SIDE samples; "differences" counts the samples, of all there are, whose
/// colour is not that of the formula. ramp-copy SIDE: a copy of as many pixels.
[[nodiscard]] Contestants BinaryContestants();
