#pragma once

#include "server/FaultPlan.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include <QStringList>

/// The tasks of the program.
enum class ServerTask {
    Serve,
    ListKept, ///< lists the kept previous contents of the workspace
    PutBack,  ///< makes one of them the workspace again
};

/// The options on the command line.
struct ServerOptions {
    ServerTask task = ServerTask::Serve;
    std::string keptTime; ///< for PutBack
    std::string address = "127.0.0.1";
    std::uint16_t port = 3600;          ///< control port; 0 lets the system pick
    std::uint16_t discoveryPort = 3601; ///< 0 lets the system pick
    std::string workspace;              ///< the folder that is served
    std::uint32_t serialNumber = 100001;
    std::string model = "Desk sensor";
    std::uint64_t requestLimit = 4ULL << 30U; ///< bytes of a request's body
    unsigned connectionLimit = 32;
    std::size_t keep = 3;                          ///< how many previous contents of the workspace
    std::vector<std::string> hostNames;            ///< of this server, in addition to its addresses
    std::string tokenFile;                         ///< empty for none
    std::chrono::milliseconds idleTimeout{30'000}; ///< for a request to begin
    std::chrono::milliseconds headTimeout{5'000};  ///< for the rest of its head to arrive
    std::chrono::milliseconds transferTimeout{
        180'000};        ///< for a body to arrive, and for a reply to be received
    std::string logFile; ///< empty for standard output
    bool replay = false;
    std::optional<bool> restoreSetsReplay;
    FaultOptions faults;
};

/// An invalid command line; what() gives the reason.
class UsageError final : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The text to print for --help or --version.
struct UsageText {
    std::string text;
};

/// Parses the command line, which begins with the program's name. Needs an application object.
/// @throws UsageError
std::variant<ServerOptions, UsageText> ParseServerOptions(const QStringList& arguments);
