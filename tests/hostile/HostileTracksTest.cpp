#include "HostileTrack.h"

#include "LogCapture.h"
#include "TemporaryFolder.h"
#include "document/formats/Converter.h"

#include <gmock/gmock.h>

#include <QImage>

#include <algorithm>

namespace {

using testing::IsEmpty;
using testing::StartsWith;

class HostileTracks : public testing::Test {
  protected:
    void ExpectOutcome(int result, const Outcome& expected, const char* operation) {
        std::vector<std::string> lines = log.Lines();
        lines.erase(std::remove_if(lines.begin(), lines.end(),
                                   [](const std::string& line) { return line.rfind("ERROR: ", 0) != 0; }),
                    lines.end());
        if (!expected.asked)
            return;
        EXPECT_EQ(result, expected.result) << operation;
        if (expected.line.empty()) {
            EXPECT_THAT(lines, IsEmpty()) << operation;
            return;
        }
        // A step's line may be followed by those of the operations around it.
        ASSERT_FALSE(lines.empty()) << operation;
        EXPECT_THAT(lines.front(), StartsWith("ERROR: " + expected.line)) << operation;
    }

    /// Reads a track in the order in which the window does.
    void Walk(const HostileTrack& track) {
        SCOPED_TRACE(track.name);
        const std::string file = track.name + ".trk";
        WriteFile(file, track.content);
        const auto converter = CreateConverter(file);
        static_cast<void>(log.Lines());
        TrackInfo info;
        info.minHeight = 32768.0;
        info.maxHeight = -32768.0;
        ExpectOutcome(converter->ReadInfo(file, info), track.info, "information");
        QImage image;
        const int painted = converter->ReadImage(file, info, info.minHeight, info.maxHeight, image);
        ExpectOutcome(painted, track.image, "image");
        HeightMap heights;
        std::int64_t size = 0;
        ExpectOutcome(converter->ReadHeightMap(file, info, heights, size), track.map, "height map");
        std::vector<TrackPath> paths;
        ExpectOutcome(converter->ReadPath(file, paths), track.paths, "paths");
        for (const TrackPath& path : paths) {
            EXPECT_EQ(path.methods.size(), path.points.size());
            EXPECT_EQ(path.spaces.size(), path.points.size());
        }
    }

    TemporaryFolder folder;
    LogCapture log;
};

TEST_F(HostileTracks, textIsReadUpToItsDefect) {
    for (const HostileTrack& track : HostileTextTracks())
        Walk(track);
}

TEST_F(HostileTracks, binaryIsReadUpToItsDefect) {
    for (const HostileTrack& track : HostileBinaryTracks())
        Walk(track);
}

} // namespace
