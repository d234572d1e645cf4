#include "FuzzedServer.h"

#include "Check.h"
#include "server/http/Session.h"

#include <array>
#include <filesystem>
#include <set>
#include <sstream>

#include <sys/socket.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr int kBufferSize = 16 * 1024 * 1024;
constexpr const char* kLog = "check.log";

std::unique_ptr<Workspace> FreshWorkspace() {
    fs::create_directories("served/space/vdk/ContourPath");
    Store("served/space/vdk/ContourPath/one.trk", "a track");
    Store("served/canary", "intact");
    Store("canary", "intact");
    return std::make_unique<Workspace>("served/space", 0);
}

ServerOptions Options() {
    constexpr std::uint64_t kMiB = std::uint64_t{1024} * 1024;
    ServerOptions options;
    options.requestLimit = kMiB;
    options.idleTimeout = std::chrono::milliseconds(2000);
    options.transferTimeout = std::chrono::milliseconds(2000);
    return options;
}

/// Both ends, with buffers for a complete conversation.
std::array<int, 2> Pair() {
    std::array<int, 2> ends{};
    Check(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) == 0, "a pair of sockets is made");
    for (const int end : ends) {
        if (setsockopt(end, SOL_SOCKET, SO_SNDBUFFORCE, &kBufferSize, sizeof kBufferSize) != 0)
            setsockopt(end, SOL_SOCKET, SO_SNDBUF, &kBufferSize, sizeof kBufferSize);
    }
    return ends;
}

std::string ReadAll(int end) {
    std::string all;
    std::array<char, std::size_t{64} * 1024> piece{};
    for (ssize_t count = 0; (count = read(end, piece.data(), piece.size())) > 0;)
        all.append(piece.data(), static_cast<std::size_t>(count));
    return all;
}

/// The verbs of the logged requests, in order.
std::vector<std::string> Verbs(const std::string& log) {
    std::vector<std::string> verbs;
    std::istringstream lines(log);
    for (std::string line; std::getline(lines, line);)
        if (!line.starts_with('#'))
            verbs.push_back(line.substr(0, line.find(' ')));
    return verbs;
}

} // namespace

FuzzedServer::FuzzedServer()
    : options(Options()),
      identity(options.serialNumber, options.model, options.port),
      workspace(FreshWorkspace()),
      replay(false, std::nullopt),
      faults(options.faults),
      log(kLog),
      access({"x"}, ""),
      sensor{options, identity, access, *workspace, replay, faults, log},
      router(sensor),
      first(Served()),
      outside(Outside()) {
}

std::vector<FuzzedServer::Reply> FuzzedServer::Talk(const std::string& request) {
    static const std::set<unsigned> kStatuses{200, 400, 403, 404, 405, 413, 422, 501};
    const int freeDescriptor = FreeDescriptor();
    fs::resize_file(kLog, 0);
    const std::string answers = Answers(request);
    ReplyStream stream(answers);
    std::vector<Reply> replies;
    for (const std::string& verb : Verbs(ContentOf(kLog))) {
        Reply reply = stream.Take(verb);
        if (kStatuses.count(reply.status) == 0)
            Broken("a request is served or refused, not answered with " + std::to_string(reply.status) + " " +
                   reply.body);
        replies.push_back(std::move(reply));
    }
    Check(stream.AtEnd(), "each reply answers one request");
    Check(Outside() == outside, "nothing outside the workspace is touched or left over");
    Check(FreeDescriptor() <= freeDescriptor, "every file is closed");
    return replies;
}

std::string FuzzedServer::Answers(const std::string& request) {
    const std::array<int, 2> ends = Pair();
    Check(write(ends[0], request.data(), request.size()) == static_cast<ssize_t>(request.size()),
          "a request fits the sockets");
    shutdown(ends[0], SHUT_WR);
    {
        boost::asio::io_context io(1);
        boost::asio::ip::tcp::socket socket(io, boost::asio::ip::tcp::v4(), ends[1]);
        Session(sensor, router, std::move(socket)).Run();
    }
    std::string answers = ReadAll(ends[0]);
    close(ends[0]);
    return answers;
}

Tree FuzzedServer::Outside() {
    Tree outside;
    for (auto& [name, what] : TreeOf(".")) {
        if (!name.starts_with("served/space/") && !name.starts_with("check"))
            outside.emplace(name, what);
    }
    return outside;
}

void FuzzedServer::Reset() const {
    fs::remove_all("served/space/vdk");
    for (const auto& entry : fs::directory_iterator("served/space"))
        fs::remove_all(entry.path());
    fs::create_directories("served/space/vdk/ContourPath");
    Store("served/space/vdk/ContourPath/one.trk", "a track");
    Check(IsAsAtFirst(), "the workspace can be reset");
}
