#include "DiscoveryResponder.h"

#include <stdexcept>
#include <utility>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

DiscoveryResponder::DiscoveryResponder(std::vector<std::string> answers, std::chrono::milliseconds pause)
    : answers(std::move(answers)), pause(pause), descriptor(socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof(address);
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(descriptor, generic, length) != 0 || getsockname(descriptor, generic, &length) != 0)
        throw std::runtime_error("The discovery responder cannot listen.");
    port = ntohs(address.sin_port);
    thread = std::thread([this] { Serve(); });
}

DiscoveryResponder::~DiscoveryResponder() {
    stopping = true;
    thread.join();
    close(descriptor);
}

std::string DiscoveryResponder::Target() const {
    return "127.0.0.1:" + std::to_string(port);
}

std::vector<std::string> DiscoveryResponder::Questions() const {
    const std::lock_guard<std::mutex> lock(guard);
    return questions;
}

void DiscoveryResponder::Serve() {
    constexpr int kPollInterval = 20;
    std::string question(65536, '\0');
    pollfd wait{descriptor, POLLIN, 0};
    while (!stopping) {
        if (poll(&wait, 1, kPollInterval) <= 0)
            continue;
        sockaddr_in from{};
        socklen_t length = sizeof(from);
        auto* const sender = reinterpret_cast<sockaddr*>(&from);
        const ssize_t size = recvfrom(descriptor, question.data(), question.size(), 0, sender, &length);
        if (size < 0)
            continue;
        {
            const std::lock_guard<std::mutex> lock(guard);
            questions.push_back(question.substr(0, static_cast<std::size_t>(size)));
        }
        for (const std::string& answer : answers) {
            std::this_thread::sleep_for(pause);
            sendto(descriptor, answer.data(), answer.size(), 0, sender, length);
        }
    }
}

std::string DiscoveryAnswer(long long serialNumber, const std::string& address, long long controlPort) {
    return R"({"SerialNumber":)" + std::to_string(serialNumber) +
           R"(,"DeviceModel":"Desk","AppName":"server","AppId":"1","AppVersion":"1.0","ControlPort":)" +
           std::to_string(controlPort) + R"(,"WebPort":0,"VdpPort":0,"Address":")" + address +
           R"(","Mask":"255.0.0.0","Gateway":"127.0.0.1","Dhcp":false,"IsRemote":false,)" +
           R"("AddressConflict":false})";
}
