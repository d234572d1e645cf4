#pragma once

/// What the two libraries' starts answer in this test program, and how often they were asked:
/// FakeLibraries.cpp is linked in place of the libraries' own starts.
namespace fakeLibraries {

extern int apiStatus;
extern int deviceStatus;
extern int apiStarts;
extern int deviceStarts;

} // namespace fakeLibraries
