#include "tools/commands/Commands.h"

#include "tools/track/SavePaths.h"

CommandText ConvertCommand::Text() const {
    CommandText text;
    text.name = QStringLiteral("convert");
    text.summary = QStringLiteral("Write a text track as a binary one");
    text.arguments = QStringLiteral("TRACK TARGET");
    text.min = text.max = 2;
    text.details = QStringLiteral(
        "What the editor writes when it saves a text track. Each height becomes an integer\n"
        "number of Z resolutions above the Z offset, truncated; the positions of columns and rows are\n"
        "lost. A track with a height outside the range of these integers is refused.\n");
    text.options = {
        Switch(QStringLiteral("without-paths"), QStringLiteral("accept a track without a path section"))};
    return text;
}

ExitCode ConvertCommand::Run(const Arguments& arguments) const {
    const std::string& file = arguments.Words()[0];
    const LoadedTrack track =
        LoadTrack(file, arguments.Has("without-paths") ? PathSection::Optional : PathSection::Needed);
    if (track.encoding == TrackEncoding::Binary)
        throw Failure(ExitCode::Unreadable, file + ": already a binary track");
    SavePaths(track, track.paths, arguments.Words()[1]);
    return ExitCode::Done;
}
