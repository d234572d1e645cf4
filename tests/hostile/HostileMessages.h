#pragma once

#include <string>
#include <vector>

/// What a server sends as its whole reply to a request for the backup, named after its defect. Each is
/// refused by the editor; the next request works.
struct HostileReply {
    std::string name;
    std::string bytes;
};
std::vector<HostileReply> HostileReplies();

/// What a client sends over a connection of its own, named after its defect, and the status of the server's
/// answer. The workspace and the replay mode stay as they are, and the next request is served.
struct HostileRequest {
    std::string name;
    std::string bytes;
    unsigned status;
};
std::vector<HostileRequest> HostileRequests();

/// A datagram that comes back when servers are asked for, named after its defect. Each is ignored.
struct HostileAnswer {
    std::string name;
    std::string bytes;
};
std::vector<HostileAnswer> HostileAnswers();
