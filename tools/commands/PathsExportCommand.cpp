#include "tools/commands/PathsExportCommand.h"

#include "tools/commandline/TextOutput.h"
#include "tools/commands/PathsFormat.h"
#include "tools/track/PathsCsv.h"
#include "tools/track/PathsJson.h"
#include "tools/track/SavePaths.h"

CommandText PathsExportCommand::Text() const {
    CommandText text;
    text.name = QStringLiteral("paths export");
    text.summary = QStringLiteral("Write the paths of a track as CSV or JSON");
    text.arguments = QStringLiteral("TRACK");
    text.details = QStringLiteral(
        "CSV has a line for each point: Track and Segment count from 0, X and Y are world coordinates,\n"
        "RelativeX and RelativeY are parts of the map's width and height. JSON has a LineString in\n"
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
