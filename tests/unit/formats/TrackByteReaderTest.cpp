#include "document/formats/TrackBytes.h"

#include "TemporaryFolder.h"

#include <gmock/gmock.h>

#include <array>
#include <filesystem>
#include <limits>
#include <stdexcept>

namespace {

/// The failure message of a reader during this work; empty on success.
template<typename Work>
std::string Refusal(Work&& work) {
    try {
        work();
        return {};
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

TEST(TrackByteReader, readsNumbersInSequence) {
    const TemporaryFolder folder;
    WriteFile("a", std::string("\x01\x02\x00\x00\xFF\xFF\xFF\xFFxyz\0\0\0\0\0\0\xF0\x3F", 19));
    TrackByteReader bytes("a");
    ASSERT_TRUE(bytes.IsOpen());
    EXPECT_EQ(bytes.Remaining(), 19);
    EXPECT_EQ(bytes.Read<std::int32_t>(), 0x201);
    EXPECT_EQ(bytes.Read<std::int32_t>(), -1);
    EXPECT_EQ(bytes.Remaining(), 11);
    bytes.Skip(3);
    EXPECT_EQ(bytes.Remaining(), 8);
    EXPECT_EQ(bytes.Read<double>(), 1.0);
    EXPECT_EQ(bytes.Remaining(), 0);
}

TEST(TrackByteReader, seeksNeitherBackNorBeyondTheEnd) {
    const TemporaryFolder folder;
    WriteFile("a", "12345");
    TrackByteReader bytes("a");
    bytes.Skip(2);
    const std::string refusal = "File cut short at byte 5";
    EXPECT_EQ(Refusal([&] { static_cast<void>(bytes.Read<std::int32_t>()); }), refusal);
    EXPECT_EQ(Refusal([&] { bytes.Skip(4); }), refusal);
    EXPECT_EQ(Refusal([&] { bytes.Skip(-1); }), refusal);
    EXPECT_EQ(Refusal([&] { bytes.Skip(std::numeric_limits<std::int64_t>::max()); }), refusal);
    EXPECT_EQ(bytes.Remaining(), 3);
    std::array<char, 3> rest{};
    bytes.Read(rest.data(), rest.size());
    EXPECT_EQ(std::string(rest.data(), rest.size()), "345") << "a refused step moves nothing";
}

TEST(TrackByteReader, isNotOpenWithoutARegularFile) {
    const TemporaryFolder folder;
    std::filesystem::create_directory("folder");
    for (const char* const name : {"missing", "folder", "/dev/zero", ""}) {
        TrackByteReader bytes(name);
        EXPECT_FALSE(bytes.IsOpen()) << name;
        EXPECT_EQ(bytes.Remaining(), 0) << name;
        EXPECT_EQ(Refusal([&] { bytes.Skip(1); }), "File cut short at byte 0");
    }
}

TEST(TrackByteReader, reportsAFileThatHasBecomeShorter) {
    const TemporaryFolder folder;
    WriteFile("a", std::string(100'000, 'x'));
    TrackByteReader bytes("a");
    std::filesystem::resize_file("a", 10);
    bytes.Skip(8);
    EXPECT_EQ(Refusal([&] { static_cast<void>(bytes.Read<std::int32_t>()); }),
              "File could not be read at byte 8");
}

} // namespace
