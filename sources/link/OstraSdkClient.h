#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// A sensor server that discovery found.
struct OstraServerInfo {
    std::string address;          ///< dotted IPv4, as bIpAddress_Format writes it
    unsigned int controlPort = 0; ///< TCP port of its requests, as its answer gives it
};

namespace OstraSdk {
class VeSystem;
}

/// How long a request may take at most, in microseconds.
struct OstraTimeouts {
    std::int64_t archive = 180000000; ///< backup and restore
    std::int64_t replay = 3000000;    ///< reading and setting the replay mode
};

/// The program's only gateway to a sensor server: finds servers, connects to one, fetches its workspace as a
/// backup file, restores it from one and handles the replay mode.
///
/// Every operation blocks the calling thread, for no longer than its time-out, and fails with a Ve::Exception
/// whose status and message are for the operator. There is no lock: one thread at a time.
class OstraSdkClient {
  public:
    /// Bound to 127.0.0.1, port 3600, and not connected.
    OstraSdkClient();
    /// The same with time-outs other than the default ones.
    explicit OstraSdkClient(const OstraTimeouts& timeouts);
    OstraSdkClient(const OstraSdkClient&) = delete;
    OstraSdkClient& operator=(const OstraSdkClient&) = delete;
    /// Does not disconnect: nothing needs to be undone on the server.
    ~OstraSdkClient();

    /// Replaces the content of `list` by the servers that answer, in the order in which they were found.
    /// Takes from a quarter of a second to one second; finding none is not an error.
    static void DiscoverOstraServers(std::vector<OstraServerInfo>& list);

    /// Disconnects when connected, then connects to the server at a dotted IPv4 address. After a failure the
    /// client is bound to that server and not connected.
    void Connect(const std::string& address, const unsigned int& controlPort);

    /// Does nothing when not connected.
    void Disconnect();

    /// Whether the last Connect succeeded and no Disconnect followed. A server that has died since is noticed
    /// by the next request, not here.
    [[nodiscard]] bool IsConnected() const;

    /// Writes the server's complete workspace archive to a file, atomically. Up to 180 s.
    void Backup(const std::string& backupFileName);

    /// Has the server restore its workspace from an archive file. Up to 180 s.
    void Restore(const std::string& fileName);

    /// Whether replay is enabled on the server. Up to 3 s.
    [[nodiscard]] bool GetReplayMode();

    /// Up to 3 s.
    void SetReplayMode(bool enabled);

    /// Replaces the content of `buffer` by that of a file, which must not be empty.
    static void ReadFileBuffer(const std::string& fileName, std::vector<std::uint8_t>& buffer);

  private:
    /// Never null; replaced by each Connect.
    std::shared_ptr<OstraSdk::VeSystem> system;
    OstraTimeouts timeouts;
};
