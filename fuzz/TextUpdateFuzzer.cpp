#include "Check.h"
#include "PathUpdate.h"
#include "TrackChecks.h"
#include "document/formats/ConvertCSV.h"

#include <cmath>
#include <cstdlib>
#include <optional>

namespace {

/// The lines before the first header of a ruler section, as they must be copied.
struct Copied {
    std::string text;
    bool hasSegments = false; ///< they include an old path section, which is found before the new one
};

/// Nothing when a line has a quote or an escape, whose rules are not implemented here.
std::optional<Copied> CopiedFrom(const std::string& original) {
    if (original.find_first_of("\"\\") != std::string::npos)
        return std::nullopt;
    Copied copied;
    for (std::size_t at = 0; at < original.size();) {
        const std::size_t end = std::min(original.find('\n', at), original.size());
        std::string line = original.substr(at, end - at);
        at = end + 1;
        if (line.ends_with('\r'))
            line.pop_back();
        const std::string first = line.substr(0, line.find(','));
        if (first.find("Ruler") != std::string::npos)
            break;
        copied.hasSegments = copied.hasSegments || first.find("Segment") != std::string::npos;
        copied.text += line + "\n";
    }
    return copied;
}

double AsWritten(double number) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", number);
    return std::strtod(text, nullptr);
}

/// The paths rounded to six digits.
std::vector<TrackPath> AsWritten(std::vector<TrackPath> paths) {
    for (TrackPath& path : paths) {
        path.rulerMarks.clear();
        for (QPointF& point : path.points)
            point = QPointF(AsWritten(point.x()), AsWritten(point.y()));
    }
    return paths;
}

void CheckTarget(const Copied& copied, const PathUpdate& update) {
    Check(update.target.starts_with(copied.text), "the lines before the rulers are copied");
    std::vector<TrackPath> read;
    if (copied.hasSegments)
        return;
    Check(ConvertCSV().ReadPath("target.trk", read) == 0, "the paths can be read back");
    CheckSamePaths(read, AsWritten(update.paths));
}

} // namespace

// Writes new paths into any bytes, read as a text track.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ConvertCSV converter;
    const PathUpdate update = UpdateAnyPaths(converter, data, size);
    const std::optional<Copied> copied = CopiedFrom(update.original);
    Check(update.result == 0 || (update.result == 1 && !copied), "only a bad escape is a failure");
    if (update.result == 0 && copied)
        CheckTarget(*copied, update);
    return 0;
}
