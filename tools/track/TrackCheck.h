#pragma once

#include <QJsonObject>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

/// A defect of a track file, and its place.
struct TrackProblem {
    enum class Severity {
        Error,  ///< the editor cannot open the file
        Warning ///< the editor opens it, but the content is probably a mistake
    };

    Severity severity = Severity::Error;
    std::optional<std::int64_t> line;   ///< in a text track, from 1
    std::optional<std::int64_t> offset; ///< in a binary track, in bytes from 0
    std::string text;

    /// "line 3: " or "byte 12: "; empty for a problem of the whole file.
    [[nodiscard]] std::string Place() const;
    /// The members "text", and "line" or "offset" where the problem has a place.
    [[nodiscard]] QJsonObject ToJson() const;
};

using ProblemSink = std::function<void(const TrackProblem& problem)>;

/// Reports every problem of a track file, in file order. At least one of them is an error exactly when the
/// editor cannot open the file.
/// @param file an existing one
void CheckTrack(const std::string& file, const ProblemSink& sink);
