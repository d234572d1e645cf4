// The memory that a backup and a restore take.

#include "link/OstraSdkClient.h"

#include "ProcessMemory.h"
#include "ScriptedServer.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

constexpr std::uint64_t kArchiveSize = 200'000'000;
constexpr std::uint64_t kMaxPeak = kArchiveSize * 3 / 2;

class ArchiveMemory : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!kMemoryIsMeasurable)
            GTEST_SKIP() << "a sanitizer's own memory hides the program's";
    }
};

/// The replies of a server that answers everything but an archive request with {}.
std::map<std::string, ScriptedReply> WithArchive(const ScriptedReply& archive) {
    return {{"/system/info", JsonReply("{}")}, {"/system/commands/archive", archive}};
}

/// A reply with {"data": <kArchiveSize letters>} that the server makes while it sends.
ScriptedReply LargeArchive(const std::string& lengthField) {
    ScriptedReply reply;
    reply.bytes = "HTTP/1.1 200 OK\r\nContent-Type: application/cbor\r\n" + lengthField + "\r\n" +
                  CborDataHead(kArchiveSize);
    reply.filler = kArchiveSize;
    return reply;
}

void ExpectBackupInBounds(const std::string& lengthField) {
    const TemporaryFolder folder;
    const ScriptedServer server(WithArchive(LargeArchive(lengthField)));
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    const PeakMemory peak;
    client.Backup("Ostra.osbak");
    EXPECT_LE(peak.Growth(), kMaxPeak);
    EXPECT_GE(peak.Growth(), kArchiveSize); // or the measurement is broken
    EXPECT_EQ(std::filesystem::file_size("Ostra.osbak"), kArchiveSize);
}

TEST_F(ArchiveMemory, backupTakesAtMostOneAndAHalfTimesItsSize) {
    const std::uint64_t body = CborDataHead(0).size() + kArchiveSize;
    ExpectBackupInBounds("Content-Length: " + std::to_string(body) + "\r\n");
}

TEST_F(ArchiveMemory, backupWithoutADeclaredLengthTakesNoMore) {
    ExpectBackupInBounds("Connection: close\r\n");
}

TEST_F(ArchiveMemory, restoreTakesAtMostOneAndAHalfTimesItsSize) {
    const TemporaryFolder folder;
    WriteFile("a.osbak", "a");
    std::filesystem::resize_file("a.osbak", kArchiveSize);
    const ScriptedServer server(JsonReply("{}"));
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    const PeakMemory peak;
    client.Restore("a.osbak");
    EXPECT_LE(peak.Growth(), kMaxPeak);
    EXPECT_GE(peak.Growth(), kArchiveSize); // or the measurement is broken
    EXPECT_GT(server.Requests().at(1).bodySize, kArchiveSize);
}

TEST_F(ArchiveMemory, declaredLengthWithoutItsBytesTakesNone) {
    const TemporaryFolder folder;
    ScriptedReply reply;
    reply.bytes = "HTTP/1.1 200 OK\r\nContent-Type: application/cbor\r\nContent-Length: 4000000014\r\n\r\n" +
                  CborDataHead(4'000'000'000) + std::string(100'000, 'x');
    const ScriptedServer server(WithArchive(reply));
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    const PeakMemory peak;
    EXPECT_THROW(client.Backup("Ostra.osbak"), std::exception);
    EXPECT_LE(peak.Growth(), 20'000'000U);
}

/// The reply of a hostile server in place of an archive.
ScriptedReply Attack(const std::string& start, char letter) {
    ScriptedReply reply;
    reply.bytes = "HTTP/1.1 200 OK\r\nContent-Type: application/cbor\r\n" + start;
    reply.filler = 200'000'000;
    reply.fillerLetter = letter;
    return reply;
}

/// Chunks of one byte each, whose extensions are each within the limit.
std::string ChunksWithExtensions() {
    std::string chunks;
    for (int i = 0; i < 100; ++i)
        chunks += "1;" + std::string(10'000, 'x') + "\r\n0\r\n";
    return chunks;
}

TEST_F(ArchiveMemory, limitsTheMemoryOfBytesOutsideTheBody) {
    constexpr std::uint64_t kMaxGrowth = 4'000'000;
    const std::string chunked = "Transfer-Encoding: chunked\r\n\r\n";
    const TemporaryFolder folder;
    for (const auto& [name, attack] :
         {std::pair{"an endless field", Attack("X: ", 'x')},
          std::pair{"an endless chunk extension", Attack(chunked + "1;", 'x')},
          std::pair{"an endless chunk size", Attack(chunked, '0')},
          std::pair{"an endless trailer", Attack(chunked + "0\r\nX: ", 'x')},
          std::pair{"chunks with extensions", Attack(chunked + ChunksWithExtensions(), 'x')}}) {
        const ScriptedServer server(WithArchive(attack));
        OstraSdkClient client;
        client.Connect("127.0.0.1", server.Port());
        const PeakMemory peak;
        EXPECT_THROW(client.Backup("Ostra.osbak"), std::exception) << name;
        EXPECT_LE(peak.Growth(), kMaxGrowth) << name;
    }
}

} // namespace
