#pragma once

#include "Figures.h"

/// binary-load FILE: ReadInfo and ReadImage of a binary track. binary-limit FILE WIDTH HEIGHT: reading the
/// file in blocks and clearing an image of that size. ramp SIDE: colours for SIDE x SIDE samples;
/// "differences" counts those of all possible samples whose colour differs from the formula. ramp-copy SIDE:
/// a copy of as many pixels.
[[nodiscard]] Contestants BinaryContestants();
