#pragma once

#include <string>

/// The time stamp of a log line: the local time to the second, a point, and the milliseconds elapsed since
/// the first stamp of the run, modulo 1000 ("14:03:07.042"). The fraction is not the wall clock's: it
/// advances evenly from line to line, and turns negative after 2^31 milliseconds. "Error in NowTime()" when
/// the system cannot tell the time.
std::string NowTime();
