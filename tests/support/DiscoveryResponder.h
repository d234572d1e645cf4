#pragma once

#include <atomic>
#include <chrono>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// Answers each datagram that reaches a port of 127.0.0.1, picked by the system, with a list of datagrams.
class DiscoveryResponder {
  public:
    /// @param pause before each answer
    explicit DiscoveryResponder(std::vector<std::string> answers,
                                std::chrono::milliseconds pause = std::chrono::milliseconds(0));
    DiscoveryResponder(const DiscoveryResponder&) = delete;
    DiscoveryResponder& operator=(const DiscoveryResponder&) = delete;
    ~DiscoveryResponder();

    /// A value for OSTRA_DISCOVERY: "127.0.0.1:" and the port.
    [[nodiscard]] std::string Target() const;
    [[nodiscard]] std::vector<std::string> Questions() const;

  private:
    void Serve();

    std::vector<std::string> answers;
    std::chrono::milliseconds pause;
    int descriptor = -1;
    unsigned int port = 0;
    std::atomic<bool> stopping{false};
    mutable std::mutex guard;
    std::vector<std::string> questions;
    std::thread thread;
};

/// A well-formed answer with all members.
std::string DiscoveryAnswer(long long serialNumber, const std::string& address, long long controlPort);
