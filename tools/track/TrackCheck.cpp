#include "tools/track/TrackCheck.h"

#include "tools/commandline/Failure.h"
#include "tools/track/BinaryTrackCheck.h"
#include "tools/track/LoadedTrack.h"
#include "tools/track/TextTrackCheck.h"

namespace {

/// The editor's reason for not opening a track; empty when it opens.
std::string EditorsRefusal(const std::string& file) {
    try {
        LoadImage(LoadTrack(file));
        return {};
    } catch (const Failure& failure) {
        return std::string(failure.what()).substr(file.size() + 2); // without "FILE: "
    }
}

} // namespace

std::string TrackProblem::Place() const {
    if (line)
        return "line " + std::to_string(*line) + ": ";
    return offset ? "byte " + std::to_string(*offset) + ": " : "";
}

QJsonObject TrackProblem::ToJson() const {
    QJsonObject object{{QStringLiteral("text"), QString::fromStdString(text)}};
    if (line)
        object.insert(QStringLiteral("line"), static_cast<qint64>(*line));
    if (offset)
        object.insert(QStringLiteral("offset"), static_cast<qint64>(*offset));
    return object;
}

void CheckTrack(const std::string& file, const ProblemSink& sink) {
    bool hasError = false;
    const ProblemSink note = [&](const TrackProblem& problem) {
        hasError = hasError || problem.severity == TrackProblem::Severity::Error;
        sink(problem);
    };
    if (EncodingOf(file) == TrackEncoding::Binary)
        BinaryTrackCheck(file, note).Run();
    else
        TextTrackCheck(file, note).Run();
    // Finally the editor's own readers, for whatever the checks above do not cover.
    if (const std::string refusal = hasError ? std::string() : EditorsRefusal(file); !refusal.empty())
        sink({TrackProblem::Severity::Error, {}, {}, refusal});
}
