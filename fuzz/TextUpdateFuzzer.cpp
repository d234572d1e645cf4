#include "Check.h"
#include "ConvertCSV.h"
#include "FuzzFolder.h"
#include "FuzzPaths.h"
#include "TrackChecks.h"

#include <cmath>
#include <cstdlib>
#include <optional>

namespace {

/// The lines before the first one that heads a ruler section, as they must be copied.
struct Copied {
    std::string text;
    bool hasSegments = false; ///< an old path section is among them, which is found before the new one
};

/// Nothing where a line has a quote or an escape, whose rules are not repeated here.
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

/// The paths as six digits keep them.
std::vector<TrackPath> AsWritten(std::vector<TrackPath> paths) {
    for (TrackPath& path : paths) {
        path.rulerMarks.clear();
        for (QPointF& point : path.points)
            point = QPointF(AsWritten(point.x()), AsWritten(point.y()));
    }
    return paths;
}

void CheckTarget(const Copied& copied, const std::vector<TrackPath>& paths) {
    Check(ContentOf("target.trk").starts_with(copied.text), "the lines before the rulers are copied");
    std::vector<TrackPath> read;
    if (copied.hasSegments)
        return;
    Check(ConvertCSV().ReadPath("target.trk", read) == 0, "the paths can be read back");
    CheckSamePaths(read, AsWritten(paths));
}

} // namespace

// New paths into any bytes that are taken for a text track. The paths come from the input's end.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const FuzzFolder folder;
    const int freeDescriptor = FreeDescriptor();
    FuzzedDataProvider input(data, size);
    const std::vector<TrackPath> paths = TakePaths(input);
    const WorldTransform t = TakeTransform(input);
    const std::string original = input.ConsumeRemainingBytesAsString();
    Store("original.trk", original);
    Store("target.trk", "old");

    const int result = ConvertCSV().UpdatePath("original.trk", "target.trk", paths, t.widthScale, t.xOffset,
                                               t.yOffset, t.xScale, t.yScale);
    const std::optional<Copied> copied = CopiedFrom(original);
    Check(result == 0 || (result == 1 && !copied), "only a bad escape is a failure");
    if (result == 0 && copied)
        CheckTarget(*copied, paths);
    if (result != 0)
        Check(ContentOf("target.trk") == "old", "a failure leaves the target as it was");
    Check(ContentOf("original.trk") == original, "the original is left alone");
    Check(TreeOf(".").size() == 2, "nothing else is left behind");
    Check(FreeDescriptor() <= freeDescriptor, "every file is closed");
    return 0;
}
