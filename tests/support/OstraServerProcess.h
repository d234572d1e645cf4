#pragma once

#include "ChildProcess.h"

#include <cstdint>
#include <string>
#include <vector>

/// The real ostra-server, running in a separate process on loopback with ports that the system picked.
class OstraServerProcess {
  public:
    /// Starts the server and waits until it listens.
    /// @param workspace the folder to serve
    /// @param options further words of the command line
    /// @throws std::runtime_error when it does not start, with the server's output in its message
    explicit OstraServerProcess(const std::string& workspace, std::vector<std::string> options = {});
    OstraServerProcess(const OstraServerProcess&) = delete;
    OstraServerProcess& operator=(const OstraServerProcess&) = delete;
    /// Kills the server if it still runs.
    ~OstraServerProcess();

    [[nodiscard]] std::uint16_t ControlPort() const { return controlPort; }
    [[nodiscard]] std::uint16_t DiscoveryPort() const { return discoveryPort; }
    /// "127.0.0.1:port", a value for the environment variable OSTRA_DISCOVERY.
    [[nodiscard]] std::string DiscoveryAddress() const;
    [[nodiscard]] pid_t Pid() const { return process.Pid(); }

    /// Asks the server to stop and waits. @return as ChildProcess::Await
    int Stop();
    /// Kills the server in the middle of its work, and waits.
    void Kill();
    /// Starts the server again with the same options, after Stop or Kill. The ports are new ones, and the
    /// list of requests is empty.
    void Restart();

    /// The requests that the server has seen, in order, each as "verb path body-size status". A request whose
    /// reply has arrived is among them.
    [[nodiscard]] std::vector<std::string> Requests() const;
    /// The same without sizes and statuses: "verb path".
    [[nodiscard]] std::vector<std::string> Calls() const;

    /// The path of the program: the one that was built, or the one that the variable CORVANE_SERVER_PROGRAM
    /// names.
    static std::string Program();

  private:
    void Start();
    void AwaitPorts();
    [[nodiscard]] std::uint16_t AnnouncedPort(const std::string& what) const;
    [[nodiscard]] std::vector<std::string> Lines() const;

    std::vector<std::string> command;
    std::string output; ///< the file that standard output and error go to
    ChildProcess process;
    std::uint16_t controlPort = 0;
    std::uint16_t discoveryPort = 0;
};
