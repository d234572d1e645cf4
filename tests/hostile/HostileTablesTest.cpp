#include "HostileArchive.h"
#include "HostileMessages.h"
#include "HostileTrack.h"

#include <gtest/gtest.h>

#include <set>

namespace {

/// How many entries a table has, after a look that no two share a name.
template<typename Entries>
std::size_t CountOf(const Entries& entries) {
    std::set<std::string> names;
    for (const auto& entry : entries)
        EXPECT_TRUE(names.insert(entry.name).second) << "twice: " << entry.name;
    return entries.size();
}

TEST(HostileTables, nameEachDefectOnceAndHoldTheMinimumNumber) {
    constexpr std::size_t kFewestArchives = 60;
    constexpr std::size_t kFewestInAll = 250;
    const std::size_t archives = CountOf(HostileArchives());
    EXPECT_GE(archives, kFewestArchives);
    EXPECT_GE(archives + CountOf(HostileTextTracks()) + CountOf(HostileBinaryTracks()) +
                  CountOf(HostileReplies()) + CountOf(HostileRequests()) + CountOf(HostileAnswers()),
              kFewestInAll);
}

} // namespace
