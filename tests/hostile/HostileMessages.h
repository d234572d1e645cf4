#pragma once

#include <string>
#include <vector>

/// A server's complete reply to a request for the backup, named after its defect. Each is
/// refused by the editor; the next request works.
struct HostileReply {
    std::string name;
    std::string bytes;
};
std::vector<HostileReply> HostileReplies();

/// A client's input over a separate connection, named after its defect, and the status of the server's
/// answer. The workspace and the replay mode stay unchanged, and the next request is served.
struct HostileRequest {
    std::string name;
    std::string bytes;
    unsigned status;
};
std::vector<HostileRequest> HostileRequests();

/// A datagram that answers a discovery request, named after its defect. Each is ignored.
struct HostileAnswer {
    std::string name;
    std::string bytes;
};
std::vector<HostileAnswer> HostileAnswers();
