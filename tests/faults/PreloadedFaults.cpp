#include "FileCalls.h"

#include <cstdlib>

// Loaded into a program before its own libraries, this watches the program's file calls from its first
// moment. CORVANE_FAULT_REPORT names the report's file, CORVANE_FAULT_ROOT the folder that counts. A program
// that cannot be watched does not start: an unwatched run would pass for a good one.
namespace {

struct Start {
    Start() {
        const char* const path = std::getenv("CORVANE_FAULT_REPORT");
        const char* const root = std::getenv("CORVANE_FAULT_ROOT");
        FileCallReport* const report = path == nullptr ? nullptr : MapReport(path);
        constexpr int kNotWatched = 99;
        if (report == nullptr || root == nullptr || !WatchFileCalls(root, report))
            std::_Exit(kNotWatched);
    }
};

const Start start;

} // namespace
