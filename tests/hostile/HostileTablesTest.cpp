#include "HostileArchive.h"
#include "HostileMessages.h"
#include "HostileTrack.h"

#include <gtest/gtest.h>

#include <set>

namespace {

/// The number of entries of a table; checks that their names are unique.
template<typename Entries>
std::size_t CountOf(const Entries& entries) {
    std::set<std::string> names;
    for (const auto& entry : entries)
        EXPECT_TRUE(names.insert(entry.name).second) << "duplicate: " << entry.name;
    return entries.size();
}

TEST(HostileTables, nameEachDefectOnceAndHoldTheMinimumNumber) {
    constexpr std::size_t kMinArchives = 60;
    constexpr std::size_t kMinEntries = 250;
    const std::size_t archives = CountOf(HostileArchives());
    EXPECT_GE(archives, kMinArchives);
    EXPECT_GE(archives + CountOf(HostileTextTracks()) + CountOf(HostileBinaryTracks()) +
                  CountOf(HostileReplies()) + CountOf(HostileRequests()) + CountOf(HostileAnswers()),
              kMinEntries);
}

} // namespace
