#pragma once

/// The results of the two libraries' start functions in this test program, and how often they were called:
/// FakeLibraries.cpp is linked instead of the libraries' own functions.
namespace fakeLibraries {

extern int apiStatus;
extern int deviceStatus;
extern int apiStarts;
extern int deviceStarts;

} // namespace fakeLibraries
