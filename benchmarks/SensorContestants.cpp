#include "SensorContestants.h"

#include "basalt/SystemCalls.h"
#include "link/OstraSdkClient.h"

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>
#include <thread>
#include <vector>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr std::size_t kBlock = std::size_t{256} * 1024;

Figures Measured(const std::function<void()>& work) {
    const MemoryWatch memory;
    const double processor = ProcessSeconds();
    const double wall = ElapsedSeconds();
    work();
    return {{"seconds", ProcessSeconds() - processor},
            {"wall", ElapsedSeconds() - wall},
            {"bytes", memory.PeakBytes()}};
}

void ConnectTo(OstraSdkClient& client, const std::string& port) {
    client.Connect("127.0.0.1", static_cast<unsigned>(std::stoul(port)));
}

Figures Backup(const Arguments& arguments) {
    OstraSdkClient client;
    ConnectTo(client, arguments.at(0));
    return Measured([&] { client.Backup(arguments.at(1)); });
}

Figures Restore(const Arguments& arguments) {
    OstraSdkClient client;
    ConnectTo(client, arguments.at(0));
    return Measured([&] { client.Restore(arguments.at(1)); });
}

int Checked(int result) {
    if (result < 0)
        throw std::system_error(errno, std::generic_category(), "socket copy");
    return result;
}

/// Copies from one descriptor to another until the first has ended.
void CopyAll(int from, int to) {
    static thread_local std::array<char, kBlock> block;
    for (;;) {
        const ssize_t count = read(from, block.data(), block.size());
        if (count <= 0)
            return static_cast<void>(Checked(static_cast<int>(count)));
        for (ssize_t done = 0; done < count;) {
            const ssize_t written = write(to, block.data() + done, static_cast<std::size_t>(count - done));
            Checked(written < 0 ? -1 : 0);
            done += written;
        }
    }
}

/// The two ends of a connection over loopback.
std::pair<int, int> Connection() {
    const int listener = Checked(socket(AF_INET, SOCK_STREAM, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const plain = reinterpret_cast<sockaddr*>(&address);
    Checked(bind(listener, plain, size));
    Checked(listen(listener, 1));
    Checked(getsockname(listener, plain, &size));
    const int near = Checked(socket(AF_INET, SOCK_STREAM, 0));
    Checked(connect(near, plain, size));
    const int far = Checked(accept(listener, nullptr, nullptr));
    close(listener);
    return {near, far};
}

/// socket-copy FROM TO [synced]
Figures SocketCopy(const Arguments& arguments) {
    const bool synced = arguments.size() > 2;
    const int from = Checked(open(arguments.at(0).c_str(), O_RDONLY | O_CLOEXEC));
    const int to = Checked(open(arguments.at(1).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
    const auto [near, far] = Connection();
    Figures figures = Measured([&, near = near, far = far] {
        std::thread sender([&] {
            CopyAll(from, far);
            close(far);
        });
        CopyAll(near, to);
        sender.join();
        if (synced)
            Checked(fsync(to));
    });
    close(near);
    close(from);
    close(to);
    return figures;
}

/// Writes to this much memory and frees it. A virtual machine may have to get memory that has been free for a
/// while from its host, which takes longer than everything measured; memory freed just now is available.
Figures TouchMemory(const Arguments& arguments) {
    const std::size_t size = std::stoull(arguments.at(0));
    std::vector<std::uint8_t> memory;
    ReserveInLargePages(memory, size);
    memory.resize(size, 1);
    return {{"bytes", static_cast<double>(memory.size())}};
}

} // namespace

Contestants SensorContestants() {
    return {
        {"backup", Backup}, {"restore", Restore}, {"socket-copy", SocketCopy}, {"touch-memory", TouchMemory}};
}
