#pragma once

#include "Figures.h"

/// text-load FILE, text-load-plain FILE: the complete load of a text track, ours and the simple way.
/// text-compare FILE: the number of pixels and values that differ between the two. text-info FILE: ReadInfo
/// alone. text-commas FILE: a search for every comma of the same bytes, in memory. text-memory FILE: the
/// bytes used by a load in addition to the image and the pixmap.
[[nodiscard]] Contestants TextContestants();
