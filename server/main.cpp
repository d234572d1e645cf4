#include "server/DiscoveryResponder.h"
#include "server/FaultPlan.h"
#include "server/ReplayMode.h"
#include "server/RequestLog.h"
#include "server/SensorServer.h"
#include "server/ServerIdentity.h"
#include "server/ServerOptions.h"
#include "server/Workspace.h"

#include <csignal>
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

/// Serves until a signal asks to stop.
void Serve(const ServerOptions& options) {
    const address_v4 address = boost::asio::ip::make_address_v4(options.address);
    Workspace workspace(options.workspace);
    ReplayMode replay(options.replay, options.restoreSetsReplay);
    FaultPlan faults(options.faults);
    RequestLog log(options.logFile);

    boost::asio::io_context io(1);
    boost::asio::signal_set stopSignals(io, SIGINT, SIGTERM);
    tcp::acceptor acceptor(io, tcp::endpoint(address, options.port));
    const ServerIdentity identity(options.serialNumber, options.model, acceptor.local_endpoint().port());
    DiscoveryResponder discovery(io, address, options.discoveryPort, identity);
    const Sensor sensor{options, identity, workspace, replay, faults, log};
    const SensorServer server(io, acceptor, sensor);
    stopSignals.async_wait([&](const boost::system::error_code&, int) { io.stop(); });

    Announce("control", acceptor.local_endpoint());
    Announce("discovery", discovery.Endpoint());
    io.run();
}

int Run(const QStringList& arguments) {
    const auto wish = ParseServerOptions(arguments);
    if (const auto* text = std::get_if<UsageText>(&wish))
        std::fputs(text->text.c_str(), stdout);
    else
        Serve(std::get<ServerOptions>(wish));
    return 0;
}

} // namespace

int main(int count, char* arguments[]) {
    constexpr int kFailed = 1;
    constexpr int kMisused = 2;
    std::signal(SIGPIPE, SIG_IGN); // a log reader that has gone does not end the server
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
