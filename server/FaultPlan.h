#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

/// What goes wrong with one reply.
struct Fault {
    std::chrono::milliseconds delay{0};    ///< the reply is held back this long
    std::optional<std::uint64_t> cutAfter; ///< the connection is closed after so many bytes of the reply
    std::optional<unsigned> status;        ///< the request is not carried out but answered with this
    bool damage = false;                   ///< bytes of the reply's body are changed
};

/// Which replies suffer which fault.
struct FaultOptions {
    Fault fault;
    std::string path;                   ///< only requests for this path; empty for all
    std::uint64_t skip = 0;             ///< so many of these requests go well first
    std::optional<std::uint64_t> count; ///< then so many suffer; all when empty
};

/// Deals out the faults that tests asked for, one request after the other. Safe to use from several threads.
class FaultPlan final {
  public:
    explicit FaultPlan(FaultOptions options);

    /// The fault of the next request for `path`; an empty one when nothing shall go wrong.
    [[nodiscard]] Fault Next(const std::string& path);

  private:
    const FaultOptions options;
    std::mutex mutex;
    std::uint64_t seen = 0;
};
