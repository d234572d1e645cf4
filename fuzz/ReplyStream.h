#pragma once

#include <string>
#include <string_view>

/// What the server sent over one connection, taken apart reply by reply. Checks that each is well-formed and
/// whole: a body is as long as its head tells, or comes in chunks with the digest of what they hold behind.
class ReplyStream {
  public:
    struct Reply {
        unsigned status = 0;
        std::string body;
    };

    /// @param bytes all of it; they have to outlive this object
    explicit ReplyStream(std::string_view bytes) : left(bytes) {}

    [[nodiscard]] bool AtEnd() const { return left.empty(); }

    /// The final reply to the next request; any "go on" before it is passed over.
    /// @param verb that request's: a reply to "HEAD" has no body, whatever its head tells
    Reply Take(std::string_view verb);

  private:
    std::string_view TakeHead();
    std::string TakeChunks();
    /// Everything before the next `mark`, which is passed over.
    std::string_view TakeUntil(std::string_view mark, const char* promise);
    std::string_view TakeBytes(std::size_t count);

    std::string_view left;
};
