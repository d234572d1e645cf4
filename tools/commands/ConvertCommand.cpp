#include "tools/commands/Commands.h"

#include "tools/track/SavePaths.h"

CommandText ConvertCommand::Text() const {
    CommandText text;
    text.name = QStringLiteral("convert");
    text.summary = QStringLiteral("Write a text track as a binary one");
    text.arguments = QStringLiteral("TRACK TARGET");
    text.min = text.max = 2;
    text.details = QStringLiteral(
        "What the editor writes when it saves a text track. Each height becomes the whole number of\n"
        "Z resolutions above the Z offset, without what is left over; the positions of columns and\n"
        "rows are lost. A track with a height that has no such number is refused.\n");
    text.options = {Switch(QStringLiteral("without-paths"),
                           QStringLiteral("accept a track that has no section with paths"))};
    return text;
}

ExitCode ConvertCommand::Run(const Arguments& arguments) const {
    const std::string& file = arguments.Words()[0];
    const LoadedTrack track =
        LoadTrack(file, arguments.Has("without-paths") ? PathSection::Optional : PathSection::Needed);
    if (track.encoding == TrackEncoding::Binary)
        throw Failure(ExitCode::Unreadable, file + ": a binary track already");
    SavePaths(track, track.paths, arguments.Words()[1]);
    return ExitCode::Done;
}
