#include "tools/commandline/Output.h"
#include "tools/commands/Commands.h"
#include "tools/track/PathsText.h"
#include "tools/track/SavePaths.h"

namespace {

enum class PathsFormat { Csv, Json };

OptionText PathsFormatOption() {
    return {QStringLiteral("format"),
            QStringLiteral("FORMAT"),
            QStringLiteral("csv or json (by the file's name, else csv)"),
            {}};
}

/// The format that is asked for; otherwise by the file's name: JSON for ".json" and ".geojson", else CSV.
PathsFormat PathsFormatFor(const Arguments& arguments, const std::string& file) {
    if (const auto format = arguments.Choice("format", {"csv", "json"}))
        return *format == "json" ? PathsFormat::Json : PathsFormat::Csv;
    return file.ends_with(".json") || file.ends_with(".geojson") ? PathsFormat::Json : PathsFormat::Csv;
}

std::vector<TrackPath> ReadPaths(const Arguments& arguments, const WorldTransform& world) {
    const std::string& file = arguments.Words()[1];
    const bool useWorld = arguments.Choice("coordinates", {"relative", "world"}) == "world";
    if (PathsFormatFor(arguments, file) == PathsFormat::Json)
        return PathsFromJson(file, world);
    return PathsFromCsv(file, world, useWorld ? Coordinates::World : Coordinates::Relative);
}

} // namespace

CommandText PathsExportCommand::Text() const {
    CommandText text;
    text.name = QStringLiteral("paths export");
    text.summary = QStringLiteral("Write the paths of a track as CSV or JSON");
    text.arguments = QStringLiteral("TRACK");
    text.details = QStringLiteral(
        "CSV has a line for each point: Track and Segment count from 0, X and Y are world coordinates,\n"
        "RelativeX and RelativeY are fractions of the map's width and height. JSON has a LineString in\n"
        "world coordinates for each path. Numbers are written so that they read back exactly.\n");
    text.options = {OutputOption(QStringLiteral("write to FILE, not to standard output")),
                    PathsFormatOption()};
    return text;
}

ExitCode PathsExportCommand::Run(const Arguments& arguments) const {
    const LoadedTrack track = LoadTrack(arguments.Words()[0]);
    const std::optional<std::string> target = arguments.Text("output");
    const WorldTransform world = WorldOf(track.info);
    TextOutput output(target);
    output.Write(PathsFormatFor(arguments, target.value_or("")) == PathsFormat::Json
                     ? PathsAsJson(track.paths, world)
                     : PathsAsCsv(track.paths, world));
    output.Finish();
    return ExitCode::Done;
}

CommandText PathsImportCommand::Text() const {
    CommandText text;
    text.name = QStringLiteral("paths import");
    text.summary = QStringLiteral("Replace the paths of a track by those of a CSV or JSON file");
    text.arguments = QStringLiteral("TRACK FILE");
    text.min = text.max = 2;
    text.details = QStringLiteral(
        "The track is replaced atomically, with ruler marks computed as the editor does when it saves. A\n"
        "text track becomes a binary one, so its target must be given with --output, even if it is the\n"
        "same file.\n\n"
        "CSV needs a header line with the columns Track and RelativeX, RelativeY (or X, Y); Segment,\n"
        "Method, Length, Width and Space may be missing. The editor's \"(crash).csv\" files are read as\n"
        "they are. JSON has world coordinates.\n");
    text.options = {OutputOption(QStringLiteral("write to FILE, and leave TRACK as it is")),
                    PathsFormatOption(),
                    {QStringLiteral("coordinates"),
                     QStringLiteral("WHICH"),
                     QStringLiteral("the coordinates of a CSV file to read: relative (default) or world"),
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
