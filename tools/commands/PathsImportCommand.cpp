#include "tools/commands/PathsImportCommand.h"

#include "tools/commands/PathsFormat.h"
#include "tools/track/PathsCsv.h"
#include "tools/track/PathsJson.h"
#include "tools/track/SavePaths.h"

namespace {

std::vector<TrackPath> ReadPaths(const Arguments& arguments, const WorldTransform& world) {
    const std::string& file = arguments.Words()[1];
    const bool worldCounts = arguments.Choice("coordinates", {"relative", "world"}) == "world";
    if (PathsFormatFor(arguments, file) == PathsFormat::Json)
        return PathsFromJson(file, world);
    return PathsFromCsv(file, world, worldCounts ? Coordinates::World : Coordinates::Relative);
}

} // namespace

CommandText PathsImportCommand::Text() const {
    CommandText text;
    text.name = QStringLiteral("paths import");
    text.summary = QStringLiteral("Replace the paths of a track by those of a CSV or JSON file");
    text.arguments = QStringLiteral("TRACK FILE");
    text.least = text.most = 2;
    text.details = QStringLiteral(
        "The track is replaced at once, with ruler marks computed as the editor does when it saves. A\n"
        "text track becomes a binary one, so its target has to be named with --output, even if it is\n"
        "the same file.\n\n"
        "CSV needs a header line with the columns Track and RelativeX, RelativeY (or X, Y); Segment,\n"
        "Method, Length, Width and Space may be missing. The editor's \"(crash).csv\" files are read as\n"
        "they are. JSON has world coordinates.\n");
    text.options = {OutputOption(QStringLiteral("write to FILE, and leave TRACK as it is")),
                    PathsFormatOption(),
                    {QStringLiteral("coordinates"),
                     QStringLiteral("WHICH"),
                     QStringLiteral("those of a CSV file that count: relative (default) or world"),
                     {}}};
    return text;
}

ExitCode PathsImportCommand::Run(const Arguments& arguments) const {
    const LoadedTrack track = LoadTrack(arguments.Words()[0], PathSection::Optional);
    const std::optional<std::string> target = arguments.Text("output");
    if (!target && track.encoding == TrackEncoding::Text)
        throw Failure(ExitCode::Misused, track.file + " is a text track and would become a binary one: "
                                                      "name the target with --output");
    SavePaths(track, ReadPaths(arguments, WorldOf(track.info)), target.value_or(track.file));
    return ExitCode::Done;
}
