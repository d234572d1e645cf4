#include "ScriptedServer.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <utility>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr std::size_t kReadSize = std::size_t{256} * 1024;

void SplitRequestLine(ScriptedRequest& request) {
    const std::size_t afterVerb = request.head.find(' ');
    const std::size_t afterPath = request.head.find(' ', afterVerb + 1);
    if (afterVerb == std::string::npos || afterPath == std::string::npos)
        return;
    request.verb = request.head.substr(0, afterVerb);
    request.path = request.head.substr(afterVerb + 1, afterPath - afterVerb - 1);
}

std::uint64_t DeclaredLength(const ScriptedRequest& request) {
    const std::string text = request.Field("Content-Length");
    std::uint64_t length = 0;
    std::from_chars(text.data(), text.data() + text.size(), length);
    return length;
}

void KeepBody(ScriptedRequest& request, const char* data, std::size_t size) {
    const std::size_t kept = std::min(size, ScriptedRequest::kKeptBody - request.body.size());
    request.body.append(data, kept);
    request.bodySize += size;
}

} // namespace

std::string ScriptedRequest::Field(const std::string& name) const {
    const std::string start = "\r\n" + name + ": ";
    const std::size_t found = head.find(start);
    if (found == std::string::npos)
        return {};
    const std::size_t from = found + start.size();
    return head.substr(from, head.find("\r\n", from) - from);
}

ScriptedReply HttpReply(int status, const std::string& contentType, const std::string& body) {
    ScriptedReply reply;
    reply.bytes = "HTTP/1.1 " + std::to_string(status) + " Scripted\r\nContent-Type: " + contentType +
                  "\r\nContent-Length: " + std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" +
                  body;
    return reply;
}

ScriptedReply JsonReply(const std::string& text) {
    return HttpReply(200, "application/json", text);
}

ScriptedReply DataReply(const std::string& data) {
    return HttpReply(200, "application/cbor", CborDataHead(data.size()) + data);
}

std::string CborDataHead(std::uint64_t size) {
    std::string head = "\xA1\x64"
                       "data\x5B";
    for (int shift = 56; shift >= 0; shift -= 8)
        head += static_cast<char>((size >> shift) & 0xFFU);
    return head;
}

ScriptedReply SilentReply() {
    ScriptedReply reply;
    reply.closes = false;
    return reply;
}

ScriptedServer::ScriptedServer(Script script) : script(std::move(script)) {
    Listen();
    acceptor = std::thread([this] { Accept(); });
}

ScriptedServer::ScriptedServer(const ScriptedReply& reply)
    : ScriptedServer([reply](const ScriptedRequest&) { return reply; }) {
}

ScriptedServer::ScriptedServer(std::map<std::string, ScriptedReply> replies)
    : ScriptedServer([replies = std::move(replies)](const ScriptedRequest& request) {
          const auto found = replies.find(request.path);
          return found != replies.end() ? found->second : HttpReply(404, "application/json", "{}");
      }) {
}

ScriptedServer::~ScriptedServer() {
    close(stopWriter);
    acceptor.join();
    for (std::thread& connection : connections)
        connection.join();
    close(stopReader);
}

std::vector<ScriptedRequest> ScriptedServer::Requests() const {
    const std::lock_guard<std::mutex> lock(guard);
    return requests;
}

std::vector<std::string> ScriptedServer::RequestLines() const {
    std::vector<std::string> lines;
    for (const ScriptedRequest& request : Requests())
        lines.push_back(request.verb + " " + request.path);
    return lines;
}

void ScriptedServer::Listen() {
    listener.Listen(SOMAXCONN);
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0)
        throw std::runtime_error("The scripted server cannot listen.");
    stopReader = ends[0];
    stopWriter = ends[1];
}

void ScriptedServer::Accept() {
    while (Wait(listener.Descriptor(), POLLIN)) {
        const int connection = accept4(listener.Descriptor(), nullptr, nullptr, SOCK_CLOEXEC);
        if (connection >= 0)
            connections.emplace_back([this, connection] { Serve(connection); });
    }
}

void ScriptedServer::Serve(int connection) {
    ScriptedRequest request;
    if (Receive(connection, request)) {
        const ScriptedReply reply = Answer(request);
        Send(connection, reply);
        if (reply.closes)
            shutdown(connection, SHUT_WR);
        // Reads what the client still sends: closing with unread data would discard the reply.
        std::string rest(kReadSize, '\0');
        while (Wait(connection, POLLIN) && recv(connection, rest.data(), rest.size(), 0) > 0) {
        }
    }
    close(connection);
}

bool ScriptedServer::Receive(int connection, ScriptedRequest& request) const {
    std::string piece(kReadSize, '\0');
    std::uint64_t expected = ScriptedReply::kNever;
    while (request.bodySize < expected) {
        const ssize_t size = Wait(connection, POLLIN) ? recv(connection, piece.data(), piece.size(), 0) : 0;
        if (size <= 0)
            return false;
        if (expected != ScriptedReply::kNever) {
            KeepBody(request, piece.data(), static_cast<std::size_t>(size));
            continue;
        }
        request.head.append(piece, 0, static_cast<std::size_t>(size));
        const std::size_t end = request.head.find("\r\n\r\n");
        if (end == std::string::npos)
            continue;
        const std::string body = request.head.substr(end + 4);
        request.head.resize(end + 2);
        SplitRequestLine(request);
        KeepBody(request, body.data(), body.size());
        expected = readsBodies ? DeclaredLength(request) : 0;
    }
    return true;
}

void ScriptedServer::Send(int connection, const ScriptedReply& reply) const {
    const std::uint64_t total = std::min(reply.bytes.size() + reply.filler, reply.cutAfter);
    const std::string filler(static_cast<std::size_t>(std::min<std::uint64_t>(reply.filler, reply.pieceSize)),
                             reply.fillerLetter);
    for (std::uint64_t sent = 0; sent < total;) {
        const bool inBytes = sent < reply.bytes.size();
        const char* const data = inBytes ? reply.bytes.data() + sent : filler.data();
        const std::uint64_t at = inBytes ? reply.bytes.size() - sent : filler.size();
        const std::uint64_t size = std::min({at, total - sent, std::uint64_t{reply.pieceSize}});
        if (!Pause(reply.pause) || !Wait(connection, POLLOUT))
            return;
        const ssize_t done = send(connection, data, size, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (done <= 0)
            return;
        sent += static_cast<std::uint64_t>(done);
    }
}

bool ScriptedServer::Wait(int descriptor, short events) const {
    pollfd waits[2] = {{descriptor, events, 0}, {stopReader, POLLIN, 0}};
    return poll(waits, 2, -1) > 0 && waits[1].revents == 0;
}

bool ScriptedServer::Pause(std::chrono::milliseconds time) const {
    pollfd wait{stopReader, POLLIN, 0};
    return time.count() == 0 || poll(&wait, 1, static_cast<int>(time.count())) == 0;
}

ScriptedReply ScriptedServer::Answer(const ScriptedRequest& request) {
    const std::lock_guard<std::mutex> lock(guard);
    requests.push_back(request);
    return script(request);
}
