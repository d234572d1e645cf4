#include "FuzzedServer.h"

#include "Check.h"
#include "HttpSession.h"

#include <array>
#include <charconv>
#include <filesystem>
#include <set>

#include <sys/socket.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr int kRoom = 16 * 1024 * 1024;

std::unique_ptr<Workspace> FreshWorkspace() {
    fs::create_directories("served/space/vdk/ContourPath");
    Store("served/space/vdk/ContourPath/one.trk", "a track");
    Store("served/canary", "alive");
    Store("canary", "alive");
    return std::make_unique<Workspace>("served/space");
}

ServerOptions Options() {
    constexpr std::uint64_t kMiB = std::uint64_t{1024} * 1024;
    ServerOptions options;
    options.requestLimit = kMiB;
    options.idleTimeout = std::chrono::milliseconds(2000);
    options.transferTimeout = std::chrono::milliseconds(2000);
    return options;
}

/// Both ends, with room for a whole conversation.
std::array<int, 2> Pair() {
    std::array<int, 2> ends{};
    Check(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) == 0, "a pair of sockets is made");
    for (const int end : ends) {
        if (setsockopt(end, SOL_SOCKET, SO_SNDBUFFORCE, &kRoom, sizeof kRoom) != 0)
            setsockopt(end, SOL_SOCKET, SO_SNDBUF, &kRoom, sizeof kRoom);
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

/// Takes the first reply off the text.
FuzzedServer::Reply TakeReply(std::string_view& text) {
    constexpr std::string_view kVersion = "HTTP/1.1 ";
    constexpr std::string_view kLength = "\r\nContent-Length: ";
    const std::size_t end = text.find("\r\n\r\n");
    Check(text.starts_with(kVersion) && end != std::string_view::npos, "a reply has a whole head");
    const std::string_view head = text.substr(0, end);
    text.remove_prefix(end + 4);
    FuzzedServer::Reply reply;
    std::from_chars(head.data() + kVersion.size(), head.data() + head.size(), reply.status);
    if (reply.status == 100)
        return reply;
    const std::size_t length = head.find(kLength);
    Check(length != std::string_view::npos, "a reply tells its length");
    std::size_t size = 0;
    std::from_chars(head.data() + length + kLength.size(), head.data() + head.size(), size);
    Check(text.size() >= size, "a reply is sent whole");
    reply.body = text.substr(0, size);
    text.remove_prefix(size);
    return reply;
}

} // namespace

FuzzedServer::FuzzedServer()
    : options(Options()),
      identity(options.serialNumber, options.model, options.port),
      workspace(FreshWorkspace()),
      replay(false, std::nullopt),
      faults(options.faults),
      log("/dev/null"),
      sensor{options, identity, *workspace, replay, faults, log},
      first(Served()),
      beside(Beside()) {
}

std::vector<FuzzedServer::Reply> FuzzedServer::Talk(const std::string& request) {
    static const std::set<unsigned> kStatuses{200, 400, 404, 405, 413, 422};
    const int freeDescriptor = FreeDescriptor();
    const std::string answers = Answers(request);
    std::vector<Reply> replies;
    for (std::string_view left = answers; !left.empty();) {
        Reply reply = TakeReply(left);
        if (reply.status == 100)
            continue;
        if (kStatuses.count(reply.status) == 0)
            Broken("a request is served or refused, not answered with " + std::to_string(reply.status) + " " +
                   reply.body);
        replies.push_back(std::move(reply));
    }
    Check(Beside() == beside, "nothing beside the workspace is touched or left behind");
    Check(FreeDescriptor() <= freeDescriptor, "every file is closed");
    return replies;
}

std::string FuzzedServer::Answers(const std::string& request) {
    const std::array<int, 2> ends = Pair();
    Check(write(ends[0], request.data(), request.size()) == static_cast<ssize_t>(request.size()),
          "a request fits the sockets");
    shutdown(ends[0], SHUT_WR);
    {
        HttpSession session(sensor);
        boost::asio::ip::tcp::socket socket(session.Stream().Context());
        socket.assign(boost::asio::ip::tcp::v4(), ends[1]);
        session.Stream().Accept(std::move(socket));
        session.Run();
    }
    std::string answers = ReadAll(ends[0]);
    close(ends[0]);
    return answers;
}

Tree FuzzedServer::Beside() {
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
