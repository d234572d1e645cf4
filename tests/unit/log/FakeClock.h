#pragma once

#include <cstdint>

/// The results of the calls for time and ticks in this test program.
namespace fakeClock {

constexpr std::uint32_t kStart = 0xFFFF'FF00; ///< the tick of the program's first good time stamp

extern std::uint32_t ticks;
extern bool fails; ///< the system cannot read the time

/// Takes the program's first time stamps: a failed one 700 ms before kStart, then a good one at kStart.
/// Leaves the ticks at kStart. Later calls only set the ticks.
void Begin();

extern const char* const kTime;

} // namespace fakeClock
