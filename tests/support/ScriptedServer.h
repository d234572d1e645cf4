#pragma once

#include "LoopbackSocket.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <limits>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// One request as a ScriptedServer received it.
struct ScriptedRequest {
    static constexpr std::size_t kKeptBody = std::size_t{16} * 1024 * 1024;

    std::string verb;
    std::string path;
    std::string head;           ///< request line and header fields
    std::string body;           ///< at most kKeptBody bytes of it
    std::uint64_t bodySize = 0; ///< bytes of the body that arrived

    /// The value of a header field, by its name as sent; empty when it was not sent.
    [[nodiscard]] std::string Field(const std::string& name) const;
};

/// The reply of a ScriptedServer to one connection.
struct ScriptedReply {
    static constexpr std::uint64_t kNever = std::numeric_limits<std::uint64_t>::max();

    std::string bytes;        ///< the complete reply, header included
    std::uint64_t filler = 0; ///< number of letters that follow
    char fillerLetter = 'x';
    std::size_t pieceSize = std::size_t{256} * 1024; ///< sent in one call
    std::chrono::milliseconds pause{0};              ///< before each piece
    std::uint64_t cutAfter = kNever;                 ///< ends the reply after this number of bytes
    bool closes = true; ///< ends the connection after the reply; otherwise keeps it open and silent
};

/// A reply with status line, Content-Type, Content-Length and the body.
ScriptedReply HttpReply(int status, const std::string& contentType, const std::string& body);
/// A reply with status 200 and a JSON text.
ScriptedReply JsonReply(const std::string& text);
/// A reply with status 200 and the CBOR map {"data": <bytes>}.
ScriptedReply DataReply(const std::string& data);
/// The CBOR map {"data": <bytes>} up to the first byte, for a byte string of `size` bytes.
std::string CborDataHead(std::uint64_t size);
/// Accepts the request and never replies.
ScriptedReply SilentReply();

/// A server of the tests: listens on 127.0.0.1 at a port that the system picks, reads one request from each
/// connection, records it and sends its script's reply. Connections are served in parallel; everything
/// ends with the object.
class ScriptedServer {
  public:
    using Script = std::function<ScriptedReply(const ScriptedRequest&)>;

    /// @param script is called for each request, by one thread at a time
    explicit ScriptedServer(Script script);
    /// The same reply to every request.
    explicit ScriptedServer(const ScriptedReply& reply);
    /// One reply for each path, and status 404 for any other.
    explicit ScriptedServer(std::map<std::string, ScriptedReply> replies);
    ScriptedServer(const ScriptedServer&) = delete;
    ScriptedServer& operator=(const ScriptedServer&) = delete;
    ~ScriptedServer();

    [[nodiscard]] unsigned int Port() const { return listener.Port(); }

    /// From now on only the header of a request is read before it is answered.
    void LeaveBodiesUnread() { readsBodies = false; }

    /// The requests received so far, in the order of their completion.
    [[nodiscard]] std::vector<ScriptedRequest> Requests() const;
    /// Verb and path of each, as in "GET /replay/playback".
    [[nodiscard]] std::vector<std::string> RequestLines() const;

  private:
    void Listen();
    void Accept();
    void Serve(int connection);
    bool Receive(int connection, ScriptedRequest& request) const;
    void Send(int connection, const ScriptedReply& reply) const;
    /// False when the server ends before `descriptor` is ready for `events`.
    bool Wait(int descriptor, short events) const;
    /// False when the server ends first.
    bool Pause(std::chrono::milliseconds time) const;
    ScriptedReply Answer(const ScriptedRequest& request);

    Script script;
    LoopbackSocket listener;
    int stopReader = -1; ///< readable when the server must end
    int stopWriter = -1;
    std::atomic<bool> readsBodies{true};
    mutable std::mutex guard; ///< of the requests and the script
    std::vector<ScriptedRequest> requests;
    std::vector<std::thread> connections; ///< touched by the accepting thread only, until that is joined
    std::thread acceptor;
};
