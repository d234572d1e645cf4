#pragma once

#include "Figures.h"

/// make-grid FOLDER WIDTH HEIGHT: writes the same seeded heights, two decimals, one cell in twenty empty, for
/// each of those who read them: track.trk, grid.csv (the map's rows alone), grid-nan.csv ("nan" in empty
/// cells) and grid.asc (an ASCII grid). make-binary FILE WIDTH HEIGHT: writes a binary track of seeded
/// samples.
[[nodiscard]] Contestants GridWriters();
