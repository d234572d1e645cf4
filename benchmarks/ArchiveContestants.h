#pragma once

#include "Figures.h"

/// pack FOLDER FILE, unpack FILE FOLDER: as before a restore and after a backup. "bytes" is the peak memory
/// used. make-tree FOLDER SMALL LARGE: writes SMALL files of 100 KB and LARGE ones of 20 MB, of bytes from a
/// seed.
[[nodiscard]] Contestants ArchiveContestants();
