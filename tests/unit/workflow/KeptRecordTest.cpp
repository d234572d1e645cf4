#include "workflow/KeptRecord.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

namespace {

constexpr std::string_view kMagic = "TestFile";
constexpr std::uint32_t kVersion = 3;

const std::vector<int> kNumbers = {1, -2147483647 - 1, 2147483647, 0};
const std::string kText("text\n\0\xFF", 7);

std::vector<QPointF> Points() {
    return {{0.1, -0.0}, {std::nan("7"), std::numeric_limits<double>::infinity()}, {5e-324, 1e308}};
}

/// The file that a writer filled by `add` makes.
template<typename Add>
std::string FileOf(Add add) {
    std::string file;
    const auto sink = [&file](const void* data, std::size_t size) {
        file.append(static_cast<const char*>(data), size);
    };
    KeptRecordWriter record(sink, kMagic, kVersion);
    add(record);
    record.Finish();
    return file;
}

std::string Sample() {
    return FileOf([](KeptRecordWriter& record) {
        record.AddText(kText);
        record.Add(std::uint64_t{1} << 63);
        record.AddList(kNumbers);
        record.AddList(Points());
        record.AddText("");
    });
}

/// The error of a file; empty when it reads as the sample.
std::string FlawOf(const std::string& file, std::uint32_t version = kVersion) {
    try {
        KeptRecordReader record(file, kMagic, version);
        EXPECT_EQ(record.ReadText(), kText);
        EXPECT_EQ(record.Read<std::uint64_t>(), std::uint64_t{1} << 63);
        EXPECT_EQ(record.ReadNumbers(), kNumbers);
        const std::vector<QPointF> points = record.ReadPoints();
        EXPECT_EQ(points.size(), Points().size());
        EXPECT_EQ(std::memcmp(points.data(), Points().data(), points.size() * sizeof(QPointF)), 0);
        EXPECT_EQ(record.ReadText(), "");
        record.ExpectEnd();
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return {};
}

TEST(KeptRecord, readsBackExactly) {
    EXPECT_EQ(FlawOf(Sample()), "");
}

TEST(KeptRecord, hasItsFieldsAtTheirOffsets) {
    const std::string file = FileOf([](KeptRecordWriter& record) { record.AddText("ab"); });
    EXPECT_EQ(file.substr(0, 30), std::string("TestFile\3\0\0\0\2\0\0\0\0\0\0\0ab\26\0\0\0\0\0\0\0", 30));
    EXPECT_EQ(file.size(), 34U);
}

TEST(KeptRecord, isWrittenInPieces) {
    const std::vector<std::size_t> sizes = {0,      1,      30'000, 30'000,    30'000,
                                            65'535, 65'536, 65'537, 1'000'000, 3};
    const std::string file = FileOf([&](KeptRecordWriter& record) {
        for (const std::size_t size : sizes) {
            record.AddText(std::string(size, static_cast<char>('a' + size % 26)));
        }
    });
    KeptRecordReader record(file, kMagic, kVersion);
    for (const std::size_t size : sizes)
        EXPECT_TRUE(record.ReadText() == std::string(size, static_cast<char>('a' + size % 26))) << size;
    record.ExpectEnd();
}

TEST(KeptRecord, isRefusedWhenTruncatedAtAnyByte) {
    const std::string file = Sample();
    for (std::size_t size = 0; size < file.size(); ++size)
        EXPECT_NE(FlawOf(file.substr(0, size)), "") << size;
    EXPECT_NE(FlawOf(file + "x"), "");
}

TEST(KeptRecord, isRefusedWhenAnyBitIsChanged) {
    const std::string file = Sample();
    for (std::size_t at = 0; at < file.size(); ++at) {
        for (int bit = 0; bit < 8; ++bit) {
            std::string flipped = file;
            flipped[at] = static_cast<char>(flipped[at] ^ (1 << bit));
            EXPECT_NE(FlawOf(flipped), "") << at;
        }
    }
}

TEST(KeptRecord, reportsWhatIsWrong) {
    const std::string file = Sample();
    EXPECT_EQ(FlawOf(""), "it is no such file");
    EXPECT_EQ(FlawOf("Info\nXResolution"), "it is no such file");
    EXPECT_EQ(FlawOf(file.substr(0, 23)), "it is cut short");
    EXPECT_EQ(FlawOf(file, 4), "its version is 3");
    EXPECT_EQ(FlawOf(file.substr(0, file.size() - 1)), "its length is another than it says");
    std::string changed = file;
    changed[40] = static_cast<char>(changed[40] ^ 1);
    EXPECT_EQ(FlawOf(changed), "its checksum is wrong");
}

/// A valid record with other content.
TEST(KeptRecord, isNotReadBeyondItsEnd) {
    const std::string file = FileOf([](KeptRecordWriter& record) {
        record.Add(std::numeric_limits<std::uint64_t>::max());
        record.Add(std::uint32_t{0});
    });
    EXPECT_THROW(KeptRecordReader(file, kMagic, kVersion).ReadText(), std::runtime_error);
    EXPECT_THROW(KeptRecordReader(file, kMagic, kVersion).ReadNumbers(), std::runtime_error);
    EXPECT_THROW(KeptRecordReader(file, kMagic, kVersion).ReadPoints(), std::runtime_error);
    EXPECT_THROW(KeptRecordReader(file, kMagic, kVersion).ExpectEnd(), std::runtime_error);
    KeptRecordReader record(file, kMagic, kVersion);
    static_cast<void>(record.Read<std::uint64_t>());
    EXPECT_THROW(static_cast<void>(record.Read<std::uint64_t>()), std::runtime_error);
    EXPECT_EQ(record.Read<std::uint32_t>(), 0U);
    record.ExpectEnd();
}

} // namespace
