#pragma once

#include "Figures.h"

/// make-grid FOLDER WIDTH HEIGHT: writes the same heights from a seed, with two decimals and one of twenty
/// cells empty, for each reader: track.trk, grid.csv (the map's rows alone), grid-nan.csv ("nan" in empty
/// cells) and grid.asc (an ASCII grid). make-binary FILE WIDTH HEIGHT: writes a binary track of samples from
/// a seed.
[[nodiscard]] Contestants GridWriters();
