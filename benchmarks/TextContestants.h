#pragma once

#include "Figures.h"

/// text-load FILE, text-load-plain FILE: the whole load of a text track, ours and the plain way.
/// text-compare FILE: how many pixels and figures of the two differ.
/// text-info FILE: ReadInfo alone. text-commas FILE: a search for every comma of the same bytes, in memory.
/// text-memory FILE: the bytes that a load with its pixmap takes beyond the image and the pixmap.
[[nodiscard]] Contestants TextContestants();
