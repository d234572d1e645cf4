#include "Check.h"
#include "FuzzedServer.h"

#include <algorithm>

// Any bytes as a client's input over one connection: one request or several.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static FuzzedServer server;
    const auto replies = server.Talk(std::string(reinterpret_cast<const char*>(data), size));
    Check(replies.size() <= size, "there are no more replies than bytes");
    const bool mayHaveRestored =
        std::any_of(replies.begin(), replies.end(), [](const FuzzedServer::Reply& reply) {
            return reply.status == 200 && reply.body == "{}";
        });
    if (mayHaveRestored && !server.IsAsAtFirst())
        server.Reset();
    Check(server.IsAsAtFirst(), "a workspace that was not restored is unchanged");
    return 0;
}
