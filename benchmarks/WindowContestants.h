#pragma once

#include "Figures.h"

/// window, window-bare: from the start of this process to the shown window, the program's or an empty one, in
/// "wall". Runs in the current folder, as the program does.
[[nodiscard]] Contestants WindowContestants();
