#include "RawHttp.h"

#include <cstdlib>
#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

RawHttp::RawHttp(std::uint16_t port, const std::string& from)
    : connection(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const timeval timeOut{30, 0};
    setsockopt(connection, SOL_SOCKET, SO_RCVTIMEO, &timeOut, sizeof(timeOut));
    sockaddr_in server{};
    server.sin_family = AF_INET;
    server.sin_port = htons(port);
    server.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    sockaddr_in own{};
    own.sin_family = AF_INET;
    own.sin_addr.s_addr = inet_addr(from.c_str());
    if (bind(connection, reinterpret_cast<const sockaddr*>(&own), sizeof(own)) != 0 ||
        connect(connection, reinterpret_cast<const sockaddr*>(&server), sizeof(server)) != 0) {
        close(connection);
        throw std::runtime_error("no server listens");
    }
}

RawHttp::~RawHttp() {
    close(connection);
}

bool RawHttp::Send(const std::string& bytes) {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t count = send(connection, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count <= 0)
            return false;
        sent += static_cast<std::size_t>(count);
    }
    return true;
}

void RawHttp::EndSending() {
    shutdown(connection, SHUT_WR);
}

bool RawHttp::ReadMore() {
    char chunk[65536];
    const ssize_t count = recv(connection, chunk, sizeof(chunk), 0);
    if (count <= 0)
        return false;
    received.append(chunk, static_cast<std::size_t>(count));
    return true;
}

RawHttp::Reply RawHttp::ReadHead() {
    std::size_t headEnd = std::string::npos;
    while ((headEnd = received.find("\r\n\r\n")) == std::string::npos) {
        if (!ReadMore())
            return {};
    }
    Reply reply;
    reply.head = received.substr(0, headEnd + 4);
    received.erase(0, headEnd + 4);
    reply.status = static_cast<unsigned>(std::strtoul(reply.head.c_str() + 9, nullptr, 10));
    const std::size_t length = reply.head.find("Content-Length: ");
    if (length != std::string::npos)
        reply.length = std::strtoull(reply.head.c_str() + length + 16, nullptr, 10);
    return reply;
}

RawHttp::Reply RawHttp::Read() {
    Reply reply = ReadHead();
    while (received.size() < reply.length && ReadMore()) {
    }
    if (reply.head.find("Transfer-Encoding: chunked") != std::string::npos)
        reply.length = ReadChunks();
    reply.body = received.substr(0, reply.length);
    received.erase(0, reply.body.size());
    return reply;
}

std::size_t RawHttp::ReadChunks() {
    for (std::size_t at = 0;;) {
        const std::size_t lineEnd = AwaitText("\r\n", at);
        if (lineEnd == std::string::npos)
            return received.size();
        const std::size_t size = std::strtoull(received.c_str() + at, nullptr, 16);
        if (size == 0) { // the last chunk is followed by fields and an empty line
            const std::size_t end = AwaitText("\r\n\r\n", lineEnd);
            return end == std::string::npos ? received.size() : end + 4;
        }
        at = lineEnd + 2 + size + 2;
        while (received.size() < at) {
            if (!ReadMore())
                return received.size();
        }
    }
}

std::size_t RawHttp::AwaitText(const std::string& text, std::size_t from) {
    for (;;) {
        const std::size_t found = received.find(text, from);
        if (found != std::string::npos || !ReadMore())
            return found;
    }
}

bool RawHttp::Closed() {
    if (!received.empty())
        return false;
    char byte = 0;
    return recv(connection, &byte, 1, 0) == 0;
}

std::string RawHttp::Text(const std::string& verb, const std::string& path, const std::string& body,
                          const std::string& type) {
    std::string text = verb + " " + path + " HTTP/1.1\r\nHost: 127.0.0.1\r\n";
    if (!body.empty())
        text += "Content-Type: " + type + "\r\nContent-Length: " + std::to_string(body.size()) + "\r\n";
    return text + "\r\n" + body;
}

RawHttp::Reply RawHttp::Request(std::uint16_t port, const std::string& verb, const std::string& path,
                                const std::string& body, const std::string& type) {
    RawHttp http(port);
    http.Send(Text(verb, path, body, type));
    return http.Read();
}
