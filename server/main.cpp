#include "basalt/Exception.h"
#include "basalt/ProcessStart.h"
#include "basalt/SystemCalls.h"
#include "server/DiscoveryResponder.h"
#include "server/FaultPlan.h"
#include "server/RequestLog.h"
#include "server/Sensor.h"
#include "server/ServerIdentity.h"
#include "server/ServerOptions.h"
#include "server/Workspace.h"
#include "server/handlers/Router.h"
#include "server/http/AccessRules.h"
#include "server/http/Listener.h"
#include "wire/AccessToken.h"

#include <cstdio>
#include <exception>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/signal_set.hpp>

#include <QCoreApplication>

using boost::asio::ip::address_v4;
using boost::asio::ip::tcp;

namespace {

template<typename Endpoint>
void Announce(const char* what, const Endpoint& endpoint) {
    std::printf("%s %s:%u\n", what, endpoint.address().to_string().c_str(), unsigned{endpoint.port()});
    std::fflush(stdout);
}

/// Checks at start that the descriptors suffice for all connections.
void CheckDescriptors(unsigned connections) {
    const std::size_t needed = Listener::DescriptorsFor(connections);
    const std::size_t allowed = RaiseDescriptorLimit(needed);
    if (allowed < needed)
        throw std::runtime_error("--connections " + std::to_string(connections) + " needs " +
                                 std::to_string(needed) + " open files, and the system allows " +
                                 std::to_string(allowed));
}

/// Opens a port. @param what the protocol, for the error message
template<typename Open>
auto Bound(const char* what, const std::string& address, std::uint16_t port, const Open& open) {
    try {
        return open();
    } catch (const boost::system::system_error& error) {
        throw std::runtime_error("cannot listen on " + address + " port " + std::to_string(port) + " (" +
                                 what + "): " + error.code().message());
    }
}

/// Serves until SIGINT or SIGTERM. Nothing on the disk is changed before the workspace is locked and both
/// ports are bound, since another server may be using it.
void Serve(const ServerOptions& options) {
    const address_v4 address = boost::asio::ip::make_address_v4(options.address);
    CheckDescriptors(options.connectionLimit);
    const AccessRules access(options.hostNames,
                             options.tokenFile.empty() ? "" : ReadAccessToken(options.tokenFile));
    Workspace workspace(options.workspace, options.keep);
    workspace.Lock();
    ReplayMode replay(options.replay, options.restoreSetsReplay);
    FaultPlan faults(options.faults);

    boost::asio::io_context io(1);
    boost::asio::signal_set stopSignals(io);
    for (const int signal : StopSignals())
        stopSignals.add(signal);
    tcp::acceptor acceptor = Bound("TCP", options.address, options.port,
                                   [&] { return tcp::acceptor(io, tcp::endpoint(address, options.port)); });
    const ServerIdentity identity(options.serialNumber, options.model, acceptor.local_endpoint().port());
    const auto discovery = Bound("UDP", options.address, options.discoveryPort, [&] {
        return std::make_unique<DiscoveryResponder>(io, address, options.discoveryPort, identity);
    });
    workspace.Recover();
    RequestLog log(options.logFile);
    const Sensor sensor{options, identity, access, workspace, replay, faults, log};
    const Router router(sensor);
    const Listener listener(io, acceptor, sensor, router);
    stopSignals.async_wait([&](const boost::system::error_code&, int) { io.stop(); });

    Announce("control", acceptor.local_endpoint());
    Announce("discovery", discovery->Endpoint());
    io.run();
}

void ListKept(const ServerOptions& options) {
    for (const std::string& time : Workspace(options.workspace, options.keep).Kept())
        std::printf("%s\n", time.c_str());
}

void PutBack(const ServerOptions& options) {
    Workspace workspace(options.workspace, options.keep);
    workspace.Lock();
    const std::string replaced = workspace.PutBack(options.keptTime);
    std::printf("put back %s; the replaced workspace is kept as %s\n", options.keptTime.c_str(),
                replaced.c_str());
}

int Run(const QStringList& arguments) {
    const auto parsed = ParseServerOptions(arguments);
    if (const auto* text = std::get_if<UsageText>(&parsed)) {
        std::fputs(text->text.c_str(), stdout);
        return 0;
    }
    const auto& options = std::get<ServerOptions>(parsed);
    switch (options.task) {
    case ServerTask::Serve:
        Serve(options);
        break;
    case ServerTask::ListKept:
        ListKept(options);
        break;
    case ServerTask::PutBack:
        PutBack(options);
        break;
    }
    return 0;
}

} // namespace

int main(int count, char* arguments[]) {
    constexpr int kFailed = 1;
    constexpr int kMisused = 2;
    KeepBytesOfOutput();
    IgnoreBrokenPipes(); // the end of a process that reads the log must not end the server
    const QCoreApplication application(count, arguments);
    try {
        return Run(QCoreApplication::arguments());
    } catch (const UsageError& error) {
        std::fprintf(stderr, "ostra-server: %s\nSee ostra-server --help.\n", error.what());
        return kMisused;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "ostra-server: %s\n", error.what());
        return kFailed;
    }
}
