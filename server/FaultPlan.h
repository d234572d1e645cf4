#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

/// What goes wrong with one reply.
struct Fault {
    std::chrono::milliseconds delay{0};    ///< before the reply is sent
    std::optional<std::uint64_t> cutAfter; ///< the connection is closed after this many bytes of the reply
    std::optional<unsigned> status;        ///< the request is answered with this instead of being carried out
    bool damage = false;                   ///< bytes of the reply's body are changed
};

/// Which replies get which fault.
struct FaultOptions {
    Fault fault;
    std::string path;                   ///< only requests for this path; empty for all
    std::uint64_t skip = 0;             ///< this many matching requests are answered without a fault first
    std::optional<std::uint64_t> count; ///< then this many get the fault; all when empty
};

/// Injects the faults that a test asked for, counting the requests. Thread-safe.
class FaultPlan final {
  public:
    explicit FaultPlan(FaultOptions options) : options(std::move(options)) {}

    /// The fault of the next request for `path`; a default one when nothing shall go wrong.
    [[nodiscard]] Fault Next(const std::string& path) {
        if (!options.path.empty() && options.path != path)
            return {};
        const std::lock_guard lock(mutex);
        const std::uint64_t number = seen++;
        const bool hit = number >= options.skip && (!options.count || number - options.skip < *options.count);
        return hit ? options.fault : Fault{};
    }

  private:
    const FaultOptions options;
    std::mutex mutex;
    std::uint64_t seen = 0;
};
