#include "FileCalls.h"

#include <cstdlib>

// Preloaded into a program, this library watches its file calls from the start. CORVANE_FAULT_REPORT is the
// report's file, CORVANE_FAULT_ROOT the watched folder. A program that cannot be watched does not start,
// since an unwatched run would always pass.
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
