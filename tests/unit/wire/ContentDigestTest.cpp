#include "wire/ContentDigest.h"
#include "SlowCrc32c.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace {

std::uint32_t Checksum(const std::string& bytes) {
    Crc32c checksum;
    checksum.Take(bytes.data(), bytes.size());
    return checksum.Value();
}

std::string RandomBytes(std::mt19937& random, std::size_t size) {
    std::string bytes(size, '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
    return bytes;
}

TEST(Crc32c, matchesThePublishedChecksums) {
    std::string rising(32, '\0');
    std::iota(rising.begin(), rising.end(), '\0');
    EXPECT_EQ(Checksum(""), 0U);
    EXPECT_EQ(Checksum("123456789"), 0xE3069283U);
    EXPECT_EQ(Checksum(std::string(32, '\0')), 0x8A9136AAU);
    EXPECT_EQ(Checksum(std::string(32, '\xFF')), 0x62A8AB43U);
    EXPECT_EQ(Checksum(rising), 0x46DD794EU);
}

TEST(Crc32c, equalsTheBitwiseChecksum) {
    std::mt19937 random(1);
    std::vector<std::size_t> sizes(300);
    std::iota(sizes.begin(), sizes.end(), 0U);
    for (const std::size_t size : {1024U, 4095U, 4096U, 4097U, 12'289U, 65'536U, 100'003U})
        sizes.push_back(size);
    for (const std::size_t size : sizes) {
        const std::string bytes = RandomBytes(random, size + 1);
        Crc32c checksum; // of bytes that are not aligned
        checksum.Take(bytes.data() + 1, size);
        EXPECT_EQ(checksum.Value(), independent::SlowCrc32c(bytes.substr(1))) << size;
    }
}

TEST(Crc32c, doesNotDependOnThePieces) {
    std::mt19937 random(2);
    const std::string bytes = RandomBytes(random, 5000);
    for (int round = 0; round < 50; ++round) {
        Crc32c checksum;
        for (std::size_t at = 0; at < bytes.size();) {
            const std::size_t piece = std::min<std::size_t>(bytes.size() - at, random() % 40);
            checksum.Take(bytes.data() + at, piece);
            at += piece;
        }
        EXPECT_EQ(checksum.Value(), independent::SlowCrc32c(bytes));
    }
}

TEST(ContentDigest, isWrittenAsFourBytesInBase64) {
    EXPECT_EQ(ContentDigest(0xE3069283U), "crc32c=:4waSgw==:");
    EXPECT_EQ(ContentDigest(0), "crc32c=:AAAAAA==:");
    EXPECT_EQ(ContentDigest(0xFFFFFFFFU), "crc32c=://///w==:");
}

TEST(ContentDigest, isEqualForTheRightBytes) {
    EXPECT_EQ(CheckContentDigest("crc32c=:4waSgw==:", 0xE3069283U), DigestCheck::Equal);
    EXPECT_EQ(CheckContentDigest("sha-256=:AA==:, crc32c=:4waSgw==: ", 0xE3069283U), DigestCheck::Equal);
    EXPECT_EQ(CheckContentDigest("\tcrc32c=:4waSgw==:,sha-256=:AA==:", 0xE3069283U), DigestCheck::Equal);
}

TEST(ContentDigest, isDifferentForOtherBytesOrAnInvalidValue) {
    for (const char* field : {"crc32c=:4waSgg==:", "crc32c=:4waSgw==", "crc32c=", "crc32c=4waSgw==",
                              "crc32c=::", "crc32c=:4waSgw==:;x=1", "sha-256=:AA==:, crc32c=:AAAAAA==:"})
        EXPECT_EQ(CheckContentDigest(field, 0xE3069283U), DigestCheck::Different) << field;
}

TEST(ContentDigest, isUnknownForAnotherAlgorithm) {
    for (const char* field : {"", " ", ",", ",,", "sha-256=:4waSgw==:", "crc32=:4waSgw==:"})
        EXPECT_EQ(CheckContentDigest(field, 0xE3069283U), DigestCheck::NotGiven) << field;
}

TEST(ContentDigest, isWantedUnlessItsWeightIsZero) {
    EXPECT_TRUE(WantsCrc32c(kWantedDigest));
    EXPECT_TRUE(WantsCrc32c("sha-256=1, crc32c=3"));
    EXPECT_FALSE(WantsCrc32c("sha-256=1, crc32c=0"));
    EXPECT_FALSE(WantsCrc32c("sha-256=1"));
    EXPECT_FALSE(WantsCrc32c(""));
}

} // namespace
