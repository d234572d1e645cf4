#pragma once

#include "Figures.h"

/// backup PORT FILE, restore PORT FILE: the exchange with the sensor server at that port of 127.0.0.1, as in
/// the editor. "seconds" is this process's processor time, "wall" the wall-clock time, "bytes" the memory.
/// socket-copy FROM TO [synced]: a bare copy of a file to another over a connection on loopback, with both
/// ends in this process; "synced" syncs the file at the end. touch-memory BYTES: makes this much memory
/// available to the machine.
[[nodiscard]] Contestants SensorContestants();
