// What a backup and a restore take of the program's memory beside what it had before.

#include "link/OstraSdkClient.h"

#include "ScriptedServer.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

constexpr std::uint64_t kArchiveSize = 200'000'000;
constexpr std::uint64_t kMost = kArchiveSize * 3 / 2;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMemoryTells = false;
#else
constexpr bool kMemoryTells = true;
#endif

std::uint64_t MemoryField(const std::string& name) {
    std::istringstream status(FileContent("/proc/self/status"));
    for (std::string word; status >> word;)
        if (word == name + ":") {
            std::uint64_t kilobytes = 0;
            status >> kilobytes;
            return kilobytes * 1024;
        }
    return 0;
}

/// The peak from here on, less what is in use now.
class PeakMemory {
  public:
    PeakMemory() {
        std::ofstream("/proc/self/clear_refs") << "5";
        before = MemoryField("VmRSS");
    }
    [[nodiscard]] std::uint64_t Growth() const { return MemoryField("VmHWM") - before; }

  private:
    std::uint64_t before = 0;
};

/// A reply with {"data": <kArchiveSize letters>} that the server makes while it sends.
ScriptedReply LargeArchive(const std::string& lengthField) {
    ScriptedReply reply;
    reply.bytes = "HTTP/1.1 200 OK\r\nContent-Type: application/cbor\r\n" + lengthField + "\r\n" +
                  CborDataHead(kArchiveSize);
    reply.filler = kArchiveSize;
    return reply;
}

void ExpectBackupInBounds(const std::string& lengthField) {
    if (!kMemoryTells)
        GTEST_SKIP() << "the sanitizer's own memory hides the program's";
    const TemporaryFolder folder;
    const ScriptedServer server(std::map<std::string, ScriptedReply>{
        {"/system/info", JsonReply("{}")}, {"/system/commands/archive", LargeArchive(lengthField)}});
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    const PeakMemory peak;
    client.Backup("Ostra.osbak");
    EXPECT_LE(peak.Growth(), kMost);
    EXPECT_GE(peak.Growth(), kArchiveSize); // or the measurement is broken
    EXPECT_EQ(std::filesystem::file_size("Ostra.osbak"), kArchiveSize);
}

TEST(ArchiveMemory, backupTakesAtMostOneAndAHalfTimesItsSize) {
    const std::uint64_t body = CborDataHead(0).size() + kArchiveSize;
    ExpectBackupInBounds("Content-Length: " + std::to_string(body) + "\r\n");
}

TEST(ArchiveMemory, backupWithoutADeclaredLengthTakesNoMore) {
    ExpectBackupInBounds("Connection: close\r\n");
}

TEST(ArchiveMemory, restoreTakesAtMostOneAndAHalfTimesItsSize) {
    if (!kMemoryTells)
        GTEST_SKIP() << "the sanitizer's own memory hides the program's";
    const TemporaryFolder folder;
    WriteFile("a.osbak", "a");
    std::filesystem::resize_file("a.osbak", kArchiveSize);
    const ScriptedServer server(JsonReply("{}"));
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    const PeakMemory peak;
    client.Restore("a.osbak");
    EXPECT_LE(peak.Growth(), kMost);
    EXPECT_GE(peak.Growth(), kArchiveSize); // or the measurement is broken
    EXPECT_GT(server.Requests().at(1).bodySize, kArchiveSize);
}

TEST(ArchiveMemory, declaredLengthWithoutItsBytesTakesNone) {
    if (!kMemoryTells)
        GTEST_SKIP() << "the sanitizer's own memory hides the program's";
    const TemporaryFolder folder;
    ScriptedReply reply;
    reply.bytes = "HTTP/1.1 200 OK\r\nContent-Type: application/cbor\r\nContent-Length: 4000000014\r\n\r\n" +
                  CborDataHead(4'000'000'000) + std::string(100'000, 'x');
    const ScriptedServer server(std::map<std::string, ScriptedReply>{{"/system/info", JsonReply("{}")},
                                                                     {"/system/commands/archive", reply}});
    OstraSdkClient client;
    client.Connect("127.0.0.1", server.Port());
    const PeakMemory peak;
    EXPECT_THROW(client.Backup("Ostra.osbak"), std::exception);
    EXPECT_LE(peak.Growth(), 20'000'000U);
}

/// What a server without good intent sends in place of an archive.
ScriptedReply Attack(const std::string& start, char letter) {
    ScriptedReply reply;
    reply.bytes = "HTTP/1.1 200 OK\r\nContent-Type: application/cbor\r\n" + start;
    reply.filler = 200'000'000;
    reply.fillerLetter = letter;
    return reply;
}

/// Chunks of one byte each, with an extension that is not too long for itself.
std::string ChunksWithExtensions() {
    std::string chunks;
    for (int i = 0; i < 100; ++i)
        chunks += "1;" + std::string(10'000, 'x') + "\r\n0\r\n";
    return chunks;
}

TEST(ArchiveMemory, limitsTheMemoryOfBytesOutsideTheBody) {
    if (!kMemoryTells)
        GTEST_SKIP() << "the sanitizer's own memory hides the program's";
    constexpr std::uint64_t kMostGrowth = 4'000'000;
    const std::string chunked = "Transfer-Encoding: chunked\r\n\r\n";
    const TemporaryFolder folder;
    for (const auto& [name, attack] :
         {std::pair{"an endless field", Attack("X: ", 'x')},
          std::pair{"an endless chunk extension", Attack(chunked + "1;", 'x')},
          std::pair{"an endless chunk size", Attack(chunked, '0')},
          std::pair{"an endless trailer", Attack(chunked + "0\r\nX: ", 'x')},
          std::pair{"chunks with extensions", Attack(chunked + ChunksWithExtensions(), 'x')}}) {
        const ScriptedServer server(std::map<std::string, ScriptedReply>{
            {"/system/info", JsonReply("{}")}, {"/system/commands/archive", attack}});
        OstraSdkClient client;
        client.Connect("127.0.0.1", server.Port());
        const PeakMemory peak;
        EXPECT_THROW(client.Backup("Ostra.osbak"), std::exception) << name;
        EXPECT_LE(peak.Growth(), kMostGrowth) << name;
    }
}

} // namespace
