#pragma once

#include "server/FaultPlan.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>

#include <QStringList>

/// What the command line asks of the server.
struct ServerOptions {
    std::string address = "127.0.0.1";
    std::uint16_t port = 3600;          ///< control port; 0 lets the system pick
    std::uint16_t discoveryPort = 3601; ///< 0 lets the system pick
    std::string workspace;              ///< the folder that is served
    std::uint32_t serialNumber = 100001;
    std::string model = "Desk sensor";
    std::uint64_t requestLimit = 4ULL << 30U; ///< bytes of a request's body
    unsigned connectionLimit = 32;
    std::chrono::milliseconds idleTimeout{30'000};      ///< for a request's head to arrive
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
