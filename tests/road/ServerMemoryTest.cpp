#include "ServerTest.h"

#include <sstream>

#include <gmock/gmock.h>

// Bytes beside the body are no body, and no limit of bodies stops them.

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kMemoryTells = false;
#else
constexpr bool kMemoryTells = true;
#endif

class ServerMemory : public ServerTest {
  protected:
    /// A line of the kernel's account of the server, in bytes.
    static std::uint64_t FieldOf(const OstraServerProcess& server, const std::string& name) {
        std::istringstream status(FileContent("/proc/" + std::to_string(server.Pid()) + "/status"));
        for (std::string word; status >> word;)
            if (word == name + ":") {
                std::uint64_t kilobytes = 0;
                status >> kilobytes;
                return kilobytes * 1024;
            }
        return 0;
    }

    /// Sends the start of a request and then so many bytes of `filling`, as far as the server takes them.
    static RawHttp::Reply Attack(const OstraServerProcess& server, const std::string& start,
                                 const std::string& filling) {
        constexpr std::size_t kMaxSent = 64'000'000;
        RawHttp http(server.ControlPort());
        http.Send(start);
        for (std::size_t sent = 0; sent < kMaxSent && http.Send(filling); sent += filling.size()) {
        }
        return http.Read();
    }
};

TEST_F(ServerMemory, noByteBesideABodyTakesMemoryWithoutABound) {
    if (!kMemoryTells)
        GTEST_SKIP() << "the sanitizer's own memory hides the program's";
    constexpr std::uint64_t kMostGrowth = 4'000'000;
    const OstraServerProcess server(Served());
    EXPECT_EQ(RawHttp::Request(server.ControlPort(), "GET", "/system/info").status, 200U);
    const std::uint64_t idle = FieldOf(server, "VmRSS");
    const std::string head = "PUT /replay/playback HTTP/1.1\r\nHost: 127.0.0.1\r\n";
    const std::string chunked = head + "Transfer-Encoding: chunked\r\n\r\n";
    const std::string letters(100'000, 'x');
    std::string chunks;
    for (int i = 0; i < 100; ++i)
        chunks += "1;" + std::string(1000, 'x') + "\r\n \r\n";
    const auto attack = [&](const char* name, const std::string& start, const std::string& filling) {
        Attack(server, start, filling);
        EXPECT_LE(FieldOf(server, "VmHWM"), idle + kMostGrowth) << name;
    };
    attack("an endless head", head + "X: ", letters);
    attack("an endless path", "GET /", letters);
    attack("fields without end", head, "X: y\r\n");
    attack("an endless chunk extension", chunked + "1;", letters);
    attack("an endless chunk size", chunked, std::string(100'000, '0'));
    attack("an endless trailer", chunked + "0\r\nX: ", letters);
    attack("trailers without end", chunked + "0\r\n", "X: y\r\n");
    attack("chunks with extensions", chunked, chunks);
    EXPECT_EQ(RawHttp::Request(server.ControlPort(), "GET", "/system/info").status, 200U);
}

TEST_F(ServerMemory, framesOfChunksMayHave64KiBInAll) {
    const OstraServerProcess server(Served());
    const std::string start =
        "PUT /replay/playback HTTP/1.1\r\nHost: 127.0.0.1\r\nTransfer-Encoding: chunked\r\n\r\n";
    const auto status = [&](std::size_t blanks) {
        std::string chunks = "11\r\n{\"enabled\": true}\r\n"; // 6 bytes of frame, and 6 for each blank
        for (std::size_t i = 0; i < blanks; ++i)
            chunks += "1\r\n \r\n";
        RawHttp http(server.ControlPort());
        http.Send(start + chunks + "0\r\n\r\n");
        return http.Read().status;
    };
    EXPECT_EQ(status(13'000), 200U); // 5 bytes each
    EXPECT_EQ(status(13'200), 413U);
}

} // namespace
