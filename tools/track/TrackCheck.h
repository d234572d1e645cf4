#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

/// Something in a track file that is not as it should be, and where.
struct TrackProblem {
    enum class Severity {
        Error,  ///< the editor cannot open the file
        Warning ///< it can, but reads something that was hardly meant
    };

    Severity severity = Severity::Error;
    std::optional<std::int64_t> line;   ///< in a text track, from 1
    std::optional<std::int64_t> offset; ///< in a binary track, in bytes from 0
    std::string text;
};

using ProblemSink = std::function<void(const TrackProblem& problem)>;

/// Goes through a track file and reports every problem in it, in file order. When the editor cannot open the
/// file, at least one of them is an error, and otherwise none is.
/// @param file an existing one
void CheckTrack(const std::string& file, const ProblemSink& sink);
