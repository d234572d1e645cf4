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

/// What the command line asks for.
enum class ServerTask {
    Serve,
    ListKept, ///< says which earlier contents of the workspace are kept
    PutBack,  ///< makes one of them the workspace again
};

/// What the command line asks of the server.
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
    std::size_t keep = 3;                               ///< earlier contents of the workspace
    std::vector<std::string> hostNames;                 ///< of this server, beside its addresses
    std::string tokenFile;                              ///< empty for none
    std::chrono::milliseconds idleTimeout{30'000};      ///< for a request to begin
    std::chrono::milliseconds headTimeout{5'000};       ///< for its head to arrive then
    std::chrono::milliseconds transferTimeout{180'000}; ///< for a body to arrive, and for a reply to be taken
    std::string logFile;                                ///< empty for standard output
    bool replay = false;
    std::optional<bool> restoreSetsReplay;
    FaultOptions faults;
};

/// A command line that cannot be followed; what() says why.
class UsageError final : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// A command line that only asks for a text (--help, --version).
struct UsageText {
    std::string text;
};

/// Reads the command line, the program's name first. Needs an application object.
/// @throws UsageError
std::variant<ServerOptions, UsageText> ParseServerOptions(const QStringList& arguments);
