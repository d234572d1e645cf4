#pragma once

#include "Figures.h"

/// backup PORT FILE, restore PORT FILE: the exchange with the sensor server at that port of 127.0.0.1, as the
/// editor has it. "seconds" is this process's processor time, "wall" the time it took, "bytes" the memory.
/// socket-copy FROM TO [synced]: a bare copy of a file to another over a connection on loopback, with both
/// ends in this process; "synced" waits for the disk in the end. touch-memory BYTES: makes the machine have
/// this much memory at hand.
[[nodiscard]] Contestants SensorContestants();
