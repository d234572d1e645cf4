#include "tools/commands/Commands.h"

#include "tools/commandline/Output.h"
#include "tools/track/HeightProfile.h"
#include "tools/track/ProfilePlot.h"

#include <QFileInfo>

#include <limits>

namespace {

constexpr int kMaxPlotSide = 8192;
constexpr QSize kDefaultSize(800, 400);

/// The index of the path with this number.
std::size_t PathIndex(const LoadedTrack& track, std::int64_t number) {
    if (number > static_cast<std::int64_t>(track.paths.size()))
        throw Failure(ExitCode::Misused, track.file + " has " + std::to_string(track.paths.size()) +
                                             " paths, and none with number " + std::to_string(number));
    return static_cast<std::size_t>(number - 1);
}

QString TitleOf(const LoadedTrack& track, std::int64_t number) {
    return QStringLiteral("%1, path %2")
        .arg(QFileInfo(QString::fromStdString(track.file)).fileName())
        .arg(number);
}

} // namespace

CommandText ProfileCommand::Text() const {
    CommandText text;
    text.name = QStringLiteral("profile");
    text.summary = QStringLiteral("Write the heights along a path as CSV, or plot them");
    text.arguments = QStringLiteral("TRACK");
    text.details = QStringLiteral(
        "Samples the height of the cell at equal steps along the path. Lengths and heights are in world\n"
        "units. Where there is no measurement, and outside the map, the height is empty.\n");
    text.options = {{QStringLiteral("path"),
                     QStringLiteral("NUMBER"),
                     QStringLiteral("the path, from 1 as in the editor (default 1)"),
                     {}},
                    {QStringLiteral("step"),
                     QStringLiteral("LENGTH"),
                     QStringLiteral("length of a step (default: the finer of the X and Y resolution)"),
                     {}},
                    OutputOption(QStringLiteral("write the CSV to FILE, not to standard output")),
                    {QStringLiteral("plot"),
                     QStringLiteral("PICTURE"),
                     QStringLiteral("draw a curve as a PNG picture; CSV then only with --output"),
                     {}},
                    {QStringLiteral("size"),
                     QStringLiteral("WxH"),
                     QStringLiteral("size of the picture (default 800x400)"),
                     {}}};
    return text;
}

ExitCode ProfileCommand::Run(const Arguments& arguments) const {
    const std::int64_t number =
        arguments.Integer("path", 1, std::numeric_limits<std::int32_t>::max()).value_or(1);
    const std::optional<double> step = arguments.Number("step", std::numeric_limits<double>::min(), 1e300);
    const QSize size = arguments.Size("size", kMaxPlotSide).value_or(kDefaultSize);
    const std::optional<std::string> target = arguments.Text("output");
    const std::optional<std::string> picture = arguments.Text("plot");

    const LoadedTrack track = LoadTrack(arguments.Words()[0]);
    const HeightProfile profile = ProfileAlong(track, PathIndex(track, number), step);
    if (target || !picture) {
        TextOutput output(target);
        output.Write(ProfileAsCsv(profile));
        output.Finish();
    }
    if (picture)
        WritePicture(DrawProfile(profile, TitleOf(track, number), size), *picture);
    return ExitCode::Done;
}
