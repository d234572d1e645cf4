#include "ArchiveContestants.h"
#include "BinaryContestants.h"
#include "CanvasContestants.h"
#include "GridWriter.h"
#include "SensorContestants.h"
#include "TextContestants.h"
#include "WindowContestants.h"

#include <cstdio>
#include <exception>

namespace {

Contestants AllContestants() {
    Contestants all;
    for (Contestants some : {ArchiveContestants(), BinaryContestants(), CanvasContestants(), GridWriters(),
                             SensorContestants(), TextContestants(), WindowContestants()})
        all.merge(some);
    return all;
}

void Print(const Figures& figures) {
    const char* separator = "{";
    for (const auto& [name, value] : figures) {
        std::printf("%s\"%s\": %.9g", separator, name.c_str(), value);
        separator = ", ";
    }
    std::puts("}");
}

} // namespace

/// corvane-bench CONTESTANT ARGUMENT...: runs it once and prints the results as one line of JSON.
int main(int count, char* arguments[]) {
    const Contestants contestants = AllContestants();
    const auto chosen = count > 1 ? contestants.find(arguments[1]) : contestants.end();
    if (chosen == contestants.end()) {
        for (const auto& [name, work] : contestants)
            std::fprintf(stderr, "%s\n", name.c_str());
        return 2;
    }
    try {
        Print(chosen->second({arguments + 2, arguments + count}));
        return 0;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "corvane-bench: %s: %s\n", arguments[1], failure.what());
        return 1;
    }
}
