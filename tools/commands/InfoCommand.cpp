#include "tools/commands/Commands.h"

#include "tools/commandline/DecimalText.h"
#include "tools/commandline/Output.h"
#include "tools/track/HeightProfile.h"
#include "tools/track/SavePaths.h"

#include <QJsonArray>

#include <algorithm>
#include <cmath>

namespace {

/// The facts about one track.
struct Facts {
    explicit Facts(const std::string& file)
        : track(LoadTrack(file, PathSection::Optional)), shown(ShownSizeOf(track.info)) {
        const std::vector<double> heights = LoadHeights(track);
        measured =
            std::count_if(heights.begin(), heights.end(), [](double height) { return !std::isnan(height); });
        for (const TrackPath& path : track.paths)
            lengths.push_back(DistancesOf(path, WorldOf(track.info)).back());
    }

    LoadedTrack track;
    QSize shown;
    std::int64_t measured = 0;
    std::vector<double> lengths; ///< of the paths, in world units
};

const char* NameOf(TrackEncoding encoding) {
    return encoding == TrackEncoding::Binary ? "binary" : "text";
}

std::string Numbers(std::initializer_list<double> numbers) {
    std::string list;
    for (const double number : numbers)
        list += (list.empty() ? "" : ", ") + ShortestDecimal(number);
    return list;
}

std::string Sides(int width, int height) {
    return std::to_string(width) + " x " + std::to_string(height);
}

std::string Row(const std::string& name, const std::string& value) {
    constexpr std::size_t kNameWidth = 22;
    return "  " + name + std::string(kNameWidth - name.size(), ' ') + value + '\n';
}

std::string Readable(const Facts& facts) {
    const LoadedTrack& track = facts.track;
    const TrackInfo& info = track.info;
    std::string text =
        track.file + '\n' + Row("Encoding", NameOf(track.encoding)) +
        Row("Height map",
            Sides(info.width, info.height) + " cells, " + std::to_string(facts.measured) + " measured") +
        Row("Heights", track.IsMeasured()
                           ? ShortestDecimal(info.minHeight) + " to " + ShortestDecimal(info.maxHeight)
                           : "none") +
        Row("Resolution X, Y, Z", Numbers({info.xResolution, info.yResolution, info.zResolution})) +
        Row("Offset X, Y, Z", Numbers({info.xOffset, info.yOffset, info.zOffset})) +
        Row("Anchor X, Y, angle", Numbers({info.anchorX, info.anchorY, info.anchorAngle})) +
        Row("Shown at 100 %", Sides(facts.shown.width(), facts.shown.height()) + " pixels") +
        Row("Paths", track.hasPaths ? std::to_string(track.paths.size()) : "no section with paths");
    for (std::size_t path = 0; path < track.paths.size(); ++path)
        text += Row("  " + std::to_string(path + 1), std::to_string(track.paths[path].points.size()) +
                                                         " points, length " +
                                                         RoundedDecimal(facts.lengths[path]));
    return text;
}

QJsonValue PathsOf(const Facts& facts) {
    if (!facts.track.hasPaths)
        return {};
    QJsonArray paths;
    for (std::size_t path = 0; path < facts.lengths.size(); ++path)
        paths.append(
            QJsonObject{{QStringLiteral("points"), static_cast<int>(facts.track.paths[path].points.size())},
                        {QStringLiteral("length"), facts.lengths[path]}});
    return paths;
}

QJsonObject Machine(const Facts& facts) {
    const LoadedTrack& track = facts.track;
    const TrackInfo& info = track.info;
    const auto height = [&](double value) { return track.IsMeasured() ? QJsonValue(value) : QJsonValue(); };
    return {{QStringLiteral("file"), QString::fromStdString(track.file)},
            {QStringLiteral("encoding"), QLatin1String(NameOf(track.encoding))},
            {QStringLiteral("width"), info.width},
            {QStringLiteral("height"), info.height},
            {QStringLiteral("measuredCells"), static_cast<qint64>(facts.measured)},
            {QStringLiteral("minHeight"), height(info.minHeight)},
            {QStringLiteral("maxHeight"), height(info.maxHeight)},
            {QStringLiteral("xResolution"), info.xResolution},
            {QStringLiteral("yResolution"), info.yResolution},
            {QStringLiteral("zResolution"), info.zResolution},
            {QStringLiteral("xOffset"), info.xOffset},
            {QStringLiteral("yOffset"), info.yOffset},
            {QStringLiteral("zOffset"), info.zOffset},
            {QStringLiteral("anchorX"), info.anchorX},
            {QStringLiteral("anchorY"), info.anchorY},
            {QStringLiteral("anchorAngle"), info.anchorAngle},
            {QStringLiteral("shownWidth"), facts.shown.width()},
            {QStringLiteral("shownHeight"), facts.shown.height()},
            {QStringLiteral("paths"), PathsOf(facts)}};
}

} // namespace

CommandText InfoCommand::Text() const {
    CommandText text;
    text.name = QStringLiteral("info");
    text.summary = QStringLiteral("Show what track files hold");
    text.arguments = QStringLiteral("TRACK...");
    text.max = -1;
    text.details =
        QStringLiteral("Heights and the lengths of paths are in world units. Cells without a measurement\n"
                       "do not count.\n");
    text.options = {
        Switch(QStringLiteral("json"), QStringLiteral("print a JSON object on a line for each track"))};
    return text;
}

ExitCode InfoCommand::Run(const Arguments& arguments) const {
    TextOutput output;
    const ExitCode code = ForEachFile("info", arguments.Words(), [&](const std::string& file) {
        const Facts facts(file);
        output.Write(arguments.Has("json") ? JsonLine(Machine(facts)) : Readable(facts));
        return ExitCode::Done;
    });
    output.Finish();
    return code;
}
