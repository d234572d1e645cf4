#pragma once

#include <string>
#include <string_view>

/// The bytes that the server sent over one connection, split into replies. Checks that each is well-formed
/// and complete: a body has its header's length, or comes in chunks followed by the digest of their content.
class ReplyStream {
  public:
    struct Reply {
        unsigned status = 0;
        std::string body;
    };

    /// @param bytes must outlive this object
    explicit ReplyStream(std::string_view bytes) : left(bytes) {}

    [[nodiscard]] bool AtEnd() const { return left.empty(); }

    /// The final reply to the next request; any "100 Continue" before it is skipped.
    /// @param verb of that request: a reply to "HEAD" has no body, whatever its header says
    Reply Take(std::string_view verb);

  private:
    std::string_view TakeHeader();
    std::string TakeChunks();
    /// Everything before the next `mark`, which is skipped.
    std::string_view TakeUntil(std::string_view mark, const char* promise);
    std::string_view TakeBytes(std::size_t count);

    std::string_view left;
};
