#include "ostrasdk/VeDiscoveryClient.h"

#include "basalt/Exception.h"
#include "basalt/bStatus.h"
#include "ostrasdk/DiscoveryTargets.h"

#include <boost/asio/io_context.hpp>

#include <algorithm>
#include <chrono>
#include <set>
#include <string>
#include <string_view>

namespace OstraSdk {

namespace asio = boost::asio;
using asio::ip::udp;

namespace {

constexpr std::string_view kQuestion = R"({"ostra":"discover","version":1})";
constexpr std::size_t kMaxAnswerSize = 65507;
constexpr std::size_t kMaxInstances = 1000;

/// Whether a single machine can have this address. The sender's address always qualifies.
bool IsUnicast(const bIpAddress& address) {
    constexpr unsigned kFirstBeyond = 224; // multicast, reserved ones and broadcast
    return address.octets[0] > 0 && address.octets[0] < kFirstBeyond;
}

/// One discovery request and the answers to it.
class Discovery {
  public:
    explicit Discovery(std::vector<VeInstance>& instances) : instances(instances) {}

    void Ask() {
        boost::system::error_code ignored;
        socket.non_blocking(true, ignored);
        socket.set_option(asio::socket_base::broadcast(true), ignored);
        for (const udp::endpoint& target : DiscoveryTargets())
            socket.send_to(asio::buffer(kQuestion), target, 0, ignored);
    }

    void Listen(std::chrono::microseconds time) {
        const auto end = std::chrono::steady_clock::now() + time;
        Receive();
        context.run_until(end);
    }

  private:
    void Receive() {
        socket.async_receive_from(asio::buffer(answer), sender,
                                  [this](const boost::system::error_code& error, std::size_t size) {
                                      if (!error)
                                          Add(std::string_view(answer).substr(0, size));
                                      else if (++failures > kMaxFailures)
                                          return;
                                      Receive();
                                  });
    }

    void Add(std::string_view text) {
        if (instances.size() == kMaxInstances)
            return;
        auto instance = VeInstance::FromAnswer(text);
        if (instance && IsUnicast(instance->GetIpAddress()) &&
            known.emplace(instance->GetSerialNumber(), instance->GetIpAddress().octets).second)
            instances.push_back(std::move(*instance));
    }

    static constexpr int kMaxFailures = 1000;

    std::vector<VeInstance>& instances;
    std::set<std::pair<std::int64_t, std::array<std::uint8_t, 4>>> known;
    asio::io_context context{1};
    udp::socket socket{context, udp::endpoint(udp::v4(), 0)};
    udp::endpoint sender;
    std::string answer = std::string(kMaxAnswerSize, '\0');
    int failures = 0;
};

} // namespace

void VeDiscoveryClient::BlockingDiscover(std::int64_t timeout) {
    constexpr std::chrono::microseconds kMin = std::chrono::milliseconds(250);
    constexpr std::chrono::microseconds kMax = std::chrono::seconds(1);
    instances.clear();
    try {
        Discovery discovery(instances);
        discovery.Ask();
        discovery.Listen(std::clamp(std::chrono::microseconds(timeout), kMin, kMax));
    } catch (const boost::system::system_error& error) {
        throw Ve::Exception(__LINE__, __FILE__, bERROR_CONNECTION, "VeDiscoveryClient::BlockingDiscover",
                            "%s", error.what());
    }
}

} // namespace OstraSdk
