#include "workflow/EditJournal.h"

#include "DocumentSamples.h"
#include "FileSizeLimit.h"
#include "FixedTime.h"
#include "FolderTree.h"
#include "LogCapture.h"
#include "OrdinaryUser.h"
#include "TemporaryFolder.h"
#include "document/formats/ConvertCSV.h"
#include "workflow/KeptCopies.h"
#include "workflow/KeptRecord.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <limits>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

using Tree = std::map<std::string, std::string>;

const QSize kMap(5, 3); ///< of the sample track

/// Points that only an exact copy preserves.
std::vector<TrackPath> OddPaths() {
    std::vector<TrackPath> paths = WithoutMarks(SamplePaths());
    paths[0].points[0] = {0.1, -0.0};
    paths[0].points[1] = {std::numeric_limits<double>::denorm_min(), 1e308};
    paths[1].points[0] = {std::nextafter(0.5, 1.0), -std::numeric_limits<double>::infinity()};
    paths[1].methods[0] = std::numeric_limits<int>::min();
    return paths;
}

class EditJournalTest : public testing::Test {
  protected:
    EditJournalTest() { WriteFile(track, independent::BinaryFile(SampleTrack())); }

    /// A run that crashes with these paths unsaved.
    void Crash(const std::vector<TrackPath>& paths, const QSize& map = kMap) {
        EditJournal(copies).Write(track, map, paths);
    }

    /// The start of another run.
    void Recover() {
        EditJournal(copies, [this] { return now; }).Recover([this](const auto&... arguments) {
            return Make(arguments...);
        });
    }

    bool Make(const std::string& original, const std::string& target, const std::vector<TrackPath>& paths) {
        made.push_back(original);
        madePaths = paths;
        return makes && UpdateWith(*CreateConverter(original), original, target, paths) == 0;
    }

    /// The only journal.
    [[nodiscard]] std::string Journal() const {
        std::vector<std::string> names;
        for (const auto& [name, content] : FolderTree(kept))
            if (name.starts_with(".journal-") && !name.ends_with(".lock"))
                names.push_back(name);
        EXPECT_THAT(names, SizeIs(1));
        return kept + "/" + names.at(0);
    }

    void ExpectPathsAlone(const std::vector<TrackPath>& paths) {
        const std::string name = kStamp + "größe.trk (crash).csv";
        EXPECT_THAT(FolderTree(kept), ElementsAre(testing::Key(name)));
        std::vector<TrackPath> read;
        EXPECT_EQ(ConvertCSV().ReadPath(kept + "/" + name, read), 0);
        ExpectSamePaths(read, paths);
    }

    TemporaryFolder folder;
    LogCapture log;
    TimeZone zone{"UTC0"};
    std::string kept = folder.Path("data größe/kept");
    std::string track = "./größe.trk";
    KeptCopies copies{kept, {}, [] { return kTime; }};
    std::time_t now = std::time(nullptr);
    bool makes = true;
    std::vector<std::string> made;
    std::vector<TrackPath> madePaths;
};

TEST_F(EditJournalTest, becomesACompleteTrackAtTheNextStart) {
    Crash(OddPaths());
    EXPECT_THAT(log.Lines(), IsEmpty());
    Recover();
    EXPECT_THAT(made, ElementsAre(folder.Path("größe.trk")));
    ExpectSamePaths(madePaths, OddPaths());
    ASSERT_EQ(UpdateWith(*CreateConverter(track), track, "expected.trk", OddPaths()), 0);
    EXPECT_EQ(FolderTree(kept), (Tree{{kStamp + "größe.trk (crash).trk", FileContent("expected.trk")}}));
    EXPECT_THAT(log.Lines(), Contains("INFO: Recovering unsaved paths of " + folder.Path("größe.trk")));
    EXPECT_EQ(FileContent(track), independent::BinaryFile(SampleTrack()));
}

TEST_F(EditJournalTest, holdsTheLastPathsWritten) {
    {
        EditJournal journal(copies);
        journal.Write("another.trk", QSize(1, 1), SamplePaths());
        journal.Write(track, kMap, {});
        journal.Write(track, kMap, OddPaths());
        EXPECT_THAT(FolderTree(kept), SizeIs(2)) << "with its lock";
    }
    Recover();
    ExpectSamePaths(madePaths, OddPaths());
}

TEST_F(EditJournalTest, isRemovedWhenThePathsAreSaved) {
    {
        EditJournal journal(copies);
        journal.Discard();
        EXPECT_FALSE(fs::exists(kept));
        journal.Write(track, kMap, OddPaths());
        journal.Discard();
        journal.Discard();
    }
    EXPECT_THAT(FolderTree(kept), IsEmpty());
    Recover();
    EXPECT_THAT(made, IsEmpty());
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(EditJournalTest, isPrivate) {
    Crash(OddPaths());
    struct stat state {};
    ASSERT_EQ(stat(Journal().c_str(), &state), 0);
    EXPECT_EQ(state.st_mode, static_cast<mode_t>(S_IFREG | 0600));
    EXPECT_FALSE(KeptName::IsOne(fs::path(Journal()).filename().string()));
}

TEST_F(EditJournalTest, survivesAKill) {
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0) {
        EditJournal journal(copies);
        journal.Write(track, kMap, OddPaths());
        if (write(ready[1], "r", 1) != 1)
            _exit(1);
        for (;;)
            pause();
    }
    char byte = 0;
    ASSERT_EQ(read(ready[0], &byte, 1), 1);
    Recover();
    EXPECT_THAT(made, IsEmpty()) << "of a running editor";
    kill(child, SIGKILL);
    ASSERT_EQ(waitpid(child, nullptr, 0), child);
    Recover();
    ExpectSamePaths(madePaths, OddPaths());
}

TEST_F(EditJournalTest, isNeverTakenFromARunningEditor) {
    EditJournal one(copies);
    EditJournal other(copies);
    one.Write(track, kMap, OddPaths());
    other.Write(track, kMap, {});
    const Tree before = FolderTree(kept);
    EXPECT_THAT(before, SizeIs(4));
    Recover();
    one.Recover([](auto&&...) { return false; });
    EXPECT_EQ(FolderTree(kept), before);
    other.Discard();
    EXPECT_THAT(FolderTree(kept), SizeIs(3));
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(EditJournalTest, startsAnewWhereItsFolderWasRemoved) {
    {
        EditJournal journal(copies);
        journal.Write(track, kMap, {});
        fs::remove_all(kept);
        journal.Write(track, kMap, OddPaths());
    }
    EXPECT_THAT(log.Lines(), IsEmpty());
    Recover();
    ExpectSamePaths(madePaths, OddPaths());
}

/// Another editor may have saved the track since; the copy has its current content.
TEST_F(EditJournalTest, becomesATrackOfTheFileAsItIsNow) {
    Crash(OddPaths());
    independent::Track changed = SampleTrack();
    changed.cells[0] = 77;
    WriteFile(track, independent::BinaryFile(changed));
    Recover();
    ASSERT_THAT(FolderTree(kept), SizeIs(1));
    EXPECT_EQ(independent::ReadBinary(FolderTree(kept).begin()->second).cells, changed.cells);
}

TEST_F(EditJournalTest, becomesPathsAloneWhenTheTrackIsMissing) {
    Crash(OddPaths());
    fs::remove(track);
    Recover();
    EXPECT_THAT(made, IsEmpty());
    ExpectPathsAlone(OddPaths());
}

TEST_F(EditJournalTest, becomesPathsAloneWhenTheTrackIsUnreadable) {
    Crash(OddPaths());
    for (const std::string& content : {std::string("no track"), std::string("Track  \0\2\0\0\0", 12)}) {
        WriteFile(track, content);
        Recover();
        ExpectPathsAlone(OddPaths());
        fs::remove_all(kept);
        Crash(OddPaths());
    }
    EXPECT_THAT(made, IsEmpty());
}

TEST_F(EditJournalTest, becomesPathsAloneWhenTheMapHasAnotherSize) {
    for (const QSize& other : {QSize(6, 3), QSize(5, 4), QSize(3, 5)}) {
        Crash(OddPaths(), other);
        Recover();
        EXPECT_THAT(made, IsEmpty());
        ExpectPathsAlone(OddPaths());
        fs::remove_all(kept);
    }
}

TEST_F(EditJournalTest, becomesPathsAloneWhenNoTrackCanBeMade) {
    Crash(OddPaths());
    makes = false;
    Recover();
    EXPECT_THAT(made, SizeIs(1));
    ExpectPathsAlone(OddPaths());
}

TEST_F(EditJournalTest, staysWhenNothingCanBeKept) {
    Crash(OddPaths());
    const Tree before = FolderTree(kept);
    {
        const FileSizeLimit full(50);
        Recover();
    }
    Tree after = FolderTree(kept);
    EXPECT_EQ(after.begin()->second, before.begin()->second);
    Recover();
    EXPECT_THAT(FolderTree(kept), ElementsAre(testing::Key(kStamp + "größe.trk (crash).trk")));
}

TEST_F(EditJournalTest, canHoldAPathWithoutPoints) {
    Crash({TrackPath(), TrackPath()});
    Recover();
    EXPECT_THAT(madePaths, SizeIs(2));
    EXPECT_TRUE(madePaths[1].points.empty());
}

TEST_F(EditJournalTest, isNotWrittenWhereTheFolderCannotBeMade) {
    WriteFile("file", "");
    KeptCopies nowhere(folder.Path("file/kept"));
    EditJournal(nowhere).Write(track, kMap, OddPaths());
    EXPECT_THAT(log.Lines(), ElementsAre(AllOf(StartsWith("ERROR: Failed to write the edit journal in " +
                                                          folder.Path("file/kept: ")),
                                               HasSubstr("Not a directory"))));
    KeptCopies inFile(folder.Path("file"));
    EditJournal journal(inFile);
    journal.Write(track, kMap, OddPaths());
    journal.Discard();
    EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("Not a directory")));
    journal.Recover([](auto&&...) { return true; });
    EXPECT_THAT(log.Lines(), ElementsAre(AllOf(StartsWith("ERROR: Failed to read the edit journals in "),
                                               HasSubstr("Not a directory"))));
}

TEST_F(EditJournalTest, isNotWrittenOrReadInAReadOnlyFolder) {
    Crash(OddPaths());
    const Tree before = FolderTree(kept);
    fs::permissions(kept, fs::perms::owner_read | fs::perms::owner_exec);
    fs::permissions(folder.Path(""), fs::perms::all);
    fs::permissions(folder.Path("data größe"), fs::perms::all);
    {
        const OrdinaryUser user(kept.c_str());
        ASSERT_TRUE(user.IsReady());
        EditJournal(copies).Write(track, kMap, {});
        EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("Permission denied")));
        Recover();
    }
    EXPECT_EQ(FolderTree(kept), before);
    EXPECT_THAT(made, IsEmpty());
}

TEST_F(EditJournalTest, keepsTheOldPathsOnAFullDisk) {
    {
        EditJournal journal(copies);
        journal.Write(track, kMap, OddPaths());
        const FileSizeLimit full(4096); // larger than the log
        journal.Write(track, kMap, std::vector<TrackPath>(1000, SamplePaths()[0]));
        EXPECT_THAT(log.Lines(), ElementsAre(HasSubstr("File too large")));
    }
    Recover();
    ExpectSamePaths(madePaths, OddPaths());
}

/// The best of several measurements of processor time, which other programs do not affect.
TEST_F(EditJournalTest, isWrittenWithinTwentyMillisecondsForAHundredThousandPoints) {
    TrackPath path;
    path.points.assign(100'000, {0.1, 0.2});
    path.methods.assign(100'000, 1);
    path.lengths = path.widths = path.spaces = path.methods;
    const std::vector<TrackPath> paths{path};
    EditJournal journal(copies);
    double best = 1e9;
    for (int round = 0; round < 10; ++round) {
        timespec before{};
        timespec after{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &before);
        journal.Write(track, QSize(10'000, 10'000), paths);
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &after);
        best = std::min(best, static_cast<double>(after.tv_sec - before.tv_sec) * 1e3 +
                                  static_cast<double>(after.tv_nsec - before.tv_nsec) / 1e6);
    }
    EXPECT_LE(best, 20.0) << "milliseconds";
}

TEST_F(EditJournalTest, isNotRecoveredWhereThereIsNoFolder) {
    Recover();
    EXPECT_THAT(log.Lines(), IsEmpty());
    EXPECT_FALSE(fs::exists(kept));
}

TEST_F(EditJournalTest, touchesNothingElseInTheFolder) {
    fs::create_directories(kept + "/.journal-abcdef");
    WriteFile(kept + "/.journal-abcde", "short");
    WriteFile(kept + "/.journal-abcdefg", "long");
    WriteFile(kept + "/.journal-ABCDEF", "capital");
    WriteFile(kept + "/journal-abcdef", "no point");
    fs::create_symlink("journal-abcdef", kept + "/.journal-abcdeg");
    const Tree before = FolderTree(kept);
    Recover();
    EXPECT_EQ(FolderTree(kept), before);
    EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(EditJournalTest, leavesNoLockOfARunWithoutUnsavedPaths) {
    fs::create_directories(kept);
    WriteFile(kept + "/.journal-abcdef.lock", "");
    Recover();
    EXPECT_THAT(FolderTree(kept), IsEmpty());
}

/// A journal whose file is damaged between two runs.
class DamagedJournalTest : public EditJournalTest {
  protected:
    DamagedJournalTest() {
        Crash(OddPaths());
        journal = Journal();
        content = FileContent(journal);
        static_cast<void>(log.Lines());
    }

    void ExpectIgnored(const std::string& damaged, const std::string& reason = {}) {
        WriteFile(journal, damaged);
        Recover();
        ASSERT_THAT(made, IsEmpty());
        const std::string name = fs::path(journal).filename().string();
        ASSERT_THAT(log.Lines(), ElementsAre(AllOf(StartsWith("ERROR: Ignored the edit journal " + name),
                                                   HasSubstr(reason))));
        ASSERT_EQ(FolderTree(kept), (Tree{{name, damaged}}));
    }

    std::string journal;
    std::string content;
};

TEST_F(DamagedJournalTest, isIgnoredWhenTruncatedAtAnyByte) {
    for (std::size_t size = 0; size < content.size(); ++size)
        ASSERT_NO_FATAL_FAILURE(ExpectIgnored(content.substr(0, size))) << size;
}

TEST_F(DamagedJournalTest, isIgnoredWhenAnyByteIsChanged) {
    for (std::size_t at = 0; at < content.size(); ++at) {
        for (const int change : {0x01, 0x80, 0xFF}) {
            std::string flipped = content;
            flipped[at] = static_cast<char>(flipped[at] ^ change);
            ASSERT_NO_FATAL_FAILURE(ExpectIgnored(flipped)) << at;
        }
    }
}

/// A valid journal of this version, with content that `add` gives to its writer.
template<typename Add>
std::string JournalOf(std::uint32_t version, Add add) {
    std::string file;
    const auto sink = [&file](const void* data, std::size_t size) {
        file.append(static_cast<const char*>(data), size);
    };
    KeptRecordWriter record(sink, "CorvEdit", version);
    record.AddText("a.trk");
    record.Add(std::int32_t{5});
    record.Add(std::int32_t{3});
    add(record);
    record.Finish();
    return file;
}

TEST_F(DamagedJournalTest, isIgnoredWhenItIsOfAnotherVersion) {
    ExpectIgnored(JournalOf(2, [](KeptRecordWriter& record) { record.Add(std::uint64_t{0}); }),
                  "its version is 2");
}

TEST_F(DamagedJournalTest, isIgnoredWhenItHoldsNoPaths) {
    const auto uneven = [](KeptRecordWriter& record) {
        record.Add(std::uint64_t{1});
        record.AddList(std::vector<QPointF>(2));
        for (const std::size_t count : {2U, 2U, 1U, 2U})
            record.AddList(std::vector<int>(count));
    };
    ExpectIgnored(JournalOf(1, uneven), "not parallel");
    const auto endless = [](KeptRecordWriter& record) {
        record.Add(std::numeric_limits<std::uint64_t>::max());
    };
    ExpectIgnored(JournalOf(1, endless), "less than it says");
    const auto more = [](KeptRecordWriter& record) {
        record.Add(std::uint64_t{0});
        record.AddText("more");
    };
    ExpectIgnored(JournalOf(1, more), "more than it should");
}

TEST_F(DamagedJournalTest, isRemovedAfterThirtyDays) {
    constexpr std::time_t kDay = 86'400;
    WriteFile(journal, content.substr(1));
    now = std::time(nullptr) + 30 * kDay - 60;
    Recover();
    EXPECT_TRUE(fs::exists(journal));
    now += 120;
    Recover();
    EXPECT_FALSE(fs::exists(journal));
    EXPECT_THAT(made, IsEmpty());
}

} // namespace
