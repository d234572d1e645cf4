#include "tools/track/TrackCheck.h"

#include "tools/commandline/Failure.h"
#include "tools/track/BinaryTrackCheck.h"
#include "tools/track/LoadedTrack.h"
#include "tools/track/TextTrackCheck.h"

namespace {

/// Why the editor does not open a track; empty when it does.
std::string EditorsRefusal(const std::string& file) {
    try {
        LoadImage(LoadTrack(file));
        return {};
    } catch (const Failure& failure) {
        return std::string(failure.what()).substr(file.size() + 2); // without "FILE: "
    }
}

} // namespace

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
    // The editor's readers have the last word, whatever the check above did not think of.
    if (const std::string refusal = hasError ? std::string() : EditorsRefusal(file); !refusal.empty())
        sink({TrackProblem::Severity::Error, {}, {}, refusal});
}
