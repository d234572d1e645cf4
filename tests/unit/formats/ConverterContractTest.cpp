#include "document/formats/Converter.h"

#include "DocumentSamples.h"
#include "LogCapture.h"
#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <QImage>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <sys/mount.h>

namespace {

using independent::Track;
using testing::Contains;
using testing::ElementsAre;

/// One encoding: its independent writer and its independent reader.
struct Encoding {
    const char* name;
    std::string (*write)(const Track&);
    Track (*read)(const std::string&);
    const char* realTrack;
};

void PrintTo(const Encoding& encoding, std::ostream* stream) {
    *stream << encoding.name;
}

/// The behaviour that all converters share, run for each of them; the converter is chosen by the file's
/// first line.
class ConverterContract : public testing::TestWithParam<Encoding> {
  protected:
    int Update(const std::string& original, const std::string& target, const std::vector<TrackPath>& paths) {
        return UpdateWith(*CreateConverter(original), original, target, paths);
    }

    TemporaryFolder folder;
    LogCapture log;
};

INSTANTIATE_TEST_SUITE_P(
    Encodings, ConverterContract,
    testing::Values(Encoding{"text", independent::TextFile, independent::ReadText, "fault.trk"},
                    Encoding{"binary", independent::BinaryFile, independent::ReadBinary, "fault-binary.trk"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_P(ConverterContract, readsBackThePathsThatItWrote) {
    WriteFile("a b%s'ü.trk", GetParam().write(SampleTrack()));
    ASSERT_EQ(Update("a b%s'ü.trk", "c %d\"ö.trk", SamplePaths()), 0);
    std::vector<TrackPath> paths(3);
    ASSERT_EQ(CreateConverter("c %d\"ö.trk")->ReadPath("c %d\"ö.trk", paths), 0);
    ExpectSamePaths(paths, WithoutMarks(SamplePaths()));
}

TEST_P(ConverterContract, writesRecordsThatTheIndependentReaderFinds) {
    WriteFile("a.trk", GetParam().write(SampleTrack()));
    ASSERT_EQ(Update("a.trk", "b.trk", SamplePaths()), 0);
    Track expected = SampleTrack();
    SetRecords(expected, SamplePaths(), SampleTransform());
    const Track found = GetParam().read(FileContent("b.trk"));
    EXPECT_EQ(found.rulers, expected.rulers);
    EXPECT_EQ(found.segments, expected.segments);
    EXPECT_EQ(found.anchor, expected.anchor);
}

TEST_P(ConverterContract, keepsInformationAndImage) {
    WriteFile("a.trk", GetParam().write(SampleTrack()));
    ASSERT_EQ(Update("a.trk", "b.trk", SamplePaths()), 0);
    for (const char* name : {"a.trk", "b.trk"}) {
        TrackInfo info;
        info.minHeight = 32768;
        info.maxHeight = -32768;
        QImage image;
        const auto converter = CreateConverter(name);
        ASSERT_EQ(converter->ReadInfo(name, info), 0);
        EXPECT_EQ(info.width, 5);
        EXPECT_EQ(info.height, 3);
        EXPECT_EQ(info.xResolution, 0.25);
        EXPECT_EQ(info.minHeight, 595);
        EXPECT_EQ(info.maxHeight, 610);
        ASSERT_EQ(converter->ReadImage(name, info, info.minHeight, info.maxHeight, image), 0);
        EXPECT_EQ(image.format(), QImage::Format_RGB888);
        EXPECT_EQ(image.pixelColor(3, 1), QColor(0, 0, 0));
        EXPECT_EQ(image.pixelColor(4, 0), QColor(0, 0, 0));
        EXPECT_EQ(image.pixelColor(4, 2), QColor(255, 255, 255));
        EXPECT_EQ(image.pixelColor(0, 0), QColor(0, 222, 255)) << "599: step 478 of 1792";
    }
}

TEST_P(ConverterContract, needsARangeAboveZero) {
    WriteFile("a.trk", GetParam().write(SampleTrack()));
    QImage image;
    EXPECT_EQ(CreateConverter("a.trk")->ReadImage("a.trk", InfoOf(SampleTrack()), 600, 600, image), 1);
    EXPECT_THAT(log.Lines(), Contains("ERROR: Invalid depth range for pixel retrieval from CSV"));
}

TEST_P(ConverterContract, distinguishesAMissingOriginalFromAnUnwritableTarget) {
    WriteFile("a.trk", GetParam().write(SampleTrack()));
    const auto converter = CreateConverter("a.trk");
    EXPECT_EQ(converter->UpdatePath("missing.trk", "b.trk", {}, 1, 0, 0, 1, 1), 1);
    EXPECT_EQ(converter->UpdatePath("a.trk", "missing/b.trk", {}, 1, 0, 0, 1, 1), 2);
    EXPECT_EQ(converter->UpdatePath("missing.trk", "missing/b.trk", {}, 1, 0, 0, 1, 1), 1);
    EXPECT_THAT(NamesHere(), ElementsAre("a.trk"));
}

TEST_P(ConverterContract, updatesAFileInPlace) {
    WriteFile("a.trk", GetParam().write(SampleTrack()));
    ASSERT_EQ(Update("a.trk", "a.trk", SamplePaths()), 0);
    Track expected = SampleTrack();
    SetRecords(expected, SamplePaths(), SampleTransform());
    EXPECT_EQ(FileContent("a.trk"), GetParam().write(expected));
    EXPECT_THAT(NamesHere(), ElementsAre("a.trk"));
}

TEST_P(ConverterContract, readsTheSameSurfaceFromTheRealTrack) {
    const std::string path = TestData(GetParam().realTrack);
    TrackInfo info;
    info.minHeight = 32768;
    info.maxHeight = -32768;
    const auto converter = CreateConverter(path);
    ASSERT_EQ(converter->ReadInfo(path, info), 0);
    const Track track = independent::ReadText(FileContent(TestData("fault.trk")));
    EXPECT_EQ(info.width, track.width);
    EXPECT_EQ(info.height, track.height);
    EXPECT_EQ(info.xResolution, track.xResolution);
    EXPECT_EQ(info.yOffset, track.yOffset);
    double low = 1e38;
    double high = -1e38;
    for (const std::optional<double>& height : track.heights) {
        low = std::min(low, height.value_or(low));
        high = std::max(high, height.value_or(high));
    }
    EXPECT_NEAR(info.minHeight, low, 1e-9);
    EXPECT_NEAR(info.maxHeight, high, 1e-9);
    std::vector<TrackPath> paths;
    ASSERT_EQ(converter->ReadPath(path, paths), 0);
    Track found;
    SetRecords(found, paths, {1, track.xOffset, track.yOffset, 403 * 0.25, 344 * 0.3});
    ASSERT_EQ(found.segments.size(), track.segments.size());
    for (std::size_t i = 0; i < track.segments.size(); ++i) {
        EXPECT_EQ(found.segments[i].relativeX, track.segments[i].relativeX);
        EXPECT_EQ(found.segments[i].relativeY, track.segments[i].relativeY);
        EXPECT_EQ(found.segments[i].path, track.segments[i].path);
        EXPECT_EQ(found.segments[i].space, track.segments[i].space);
    }
}

TEST(RealTracks, holdTheSameCellsInBothEncodings) {
    const Track text = independent::ReadText(FileContent(TestData("fault.trk")));
    const Track binary = independent::ReadBinary(FileContent(TestData("fault-binary.trk")));
    ASSERT_EQ(text.heights.size(), binary.cells.size());
    for (std::size_t i = 0; i < text.heights.size(); ++i) {
        ASSERT_EQ(text.heights[i].has_value(), binary.cells[i] != independent::kNoMeasurement) << i;
        // Text heights are rounded to two decimals, and raw values are truncated: they differ by less than
        // one raw step.
        if (text.heights[i]) {
            ASSERT_NEAR(*text.heights[i], binary.cells[i] * binary.zResolution + binary.zOffset,
                        binary.zResolution + 0.005)
                << i;
        }
    }
    EXPECT_EQ(text.segments.size(), binary.segments.size());
}

TEST(RealTracks, givePicturesThatDifferByAtMostARawStep) {
    QImage images[2];
    const char* names[2] = {"fault.trk", "fault-binary.trk"};
    for (int i = 0; i < 2; ++i) {
        const std::string path = TestData(names[i]);
        TrackInfo info;
        const auto converter = CreateConverter(path);
        info.minHeight = 32768;
        info.maxHeight = -32768;
        ASSERT_EQ(converter->ReadInfo(path, info), 0);
        ASSERT_EQ(converter->ReadImage(path, info, info.minHeight, info.maxHeight, images[i]), 0);
    }
    ASSERT_EQ(images[0].size(), images[1].size());
    TrackInfo info;
    ASSERT_EQ(CreateConverter(TestData(names[1]))->ReadInfo(TestData(names[1]), info), 0);
    const double stepsOfARawStep = 1792 * info.zResolution / (info.maxHeight - info.minHeight) + 1;
    for (int y = 0; y < images[0].height(); ++y) {
        for (int x = 0; x < images[0].width(); ++x) {
            const QColor a = images[0].pixelColor(x, y);
            const QColor b = images[1].pixelColor(x, y);
            const int difference =
                std::abs(a.red() - b.red()) + std::abs(a.green() - b.green()) + std::abs(a.blue() - b.blue());
            ASSERT_LE(difference, stepsOfARawStep + 1) << x << ", " << y;
        }
    }
}

/// A disk of a few pages, where this user may mount one.
class SmallDisk {
  public:
    explicit SmallDisk(int kibibytes) {
        std::filesystem::create_directory("disk");
        const std::string options = "size=" + std::to_string(kibibytes) + "k";
        mounted = mount("none", "disk", "tmpfs", 0, options.c_str()) == 0;
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;
    ~SmallDisk() {
        if (mounted)
            umount("disk");
        std::filesystem::remove("disk");
    }

    [[nodiscard]] bool IsMounted() const { return mounted; }

  private:
    bool mounted = false;
};

TEST_P(ConverterContract, keepsTheOldFileOnAFullDisk) {
    WriteFile("a.trk", GetParam().write(SampleTrack()));
    std::vector<TrackPath> many(1000, SamplePaths()[0]);
    for (int kibibytes = 4; kibibytes <= 64; kibibytes += 4) {
        const SmallDisk disk(kibibytes);
        if (!disk.IsMounted())
            GTEST_SKIP() << "this user cannot mount a disk";
        WriteFile("disk/b.trk", "old");
        EXPECT_EQ(Update("a.trk", "disk/b.trk", many), 2) << kibibytes;
        EXPECT_EQ(FileContent("disk/b.trk"), "old") << kibibytes;
    }
}

} // namespace
