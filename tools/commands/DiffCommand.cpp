#include "tools/commands/Commands.h"

#include "tools/commandline/DecimalText.h"
#include "tools/commandline/Output.h"
#include "tools/track/TrackDifference.h"

#include <QJsonArray>

#include <array>

namespace {

/// A segment parameter and its name in the file.
struct Parameter {
    const char* name;
    int PathPoint::*value;
};

constexpr std::array<Parameter, 4> kParameters = {{{"Method", &PathPoint::method},
                                                   {"Length", &PathPoint::length},
                                                   {"Width", &PathPoint::width},
                                                   {"Space", &PathPoint::space}}};

std::string Either(const std::string& first, const std::string& second) {
    return first + " | " + second;
}

constexpr int kReadableDigits = 10;
constexpr int kAllDigits = 17;

std::string PlaceOf(const PathPoint& point, int digits = kReadableDigits) {
    return RoundedDecimal(point.position.x(), digits) + ", " + RoundedDecimal(point.position.y(), digits);
}

/// Both positions, with enough digits to show the difference; empty when they are equal.
std::string Places(const PathPoint& first, const PathPoint& second) {
    for (const int digits : {kReadableDigits, kAllDigits})
        if (PlaceOf(first, digits) != PlaceOf(second, digits))
            return "at " + Either(PlaceOf(first, digits), PlaceOf(second, digits));
    return {};
}

std::string Readable(const PointDifference& difference) {
    std::string text = "  path " + std::to_string(difference.path + 1) + ", point " +
                       std::to_string(difference.point + 1) + ": ";
    if (!difference.first || !difference.second) {
        const PathPoint& point = difference.first ? *difference.first : *difference.second;
        return text + "only in the " + (difference.first ? "first" : "second") + " track, at " +
               PlaceOf(point) + '\n';
    }
    std::string changes = Places(*difference.first, *difference.second);
    for (const Parameter& parameter : kParameters) {
        const int first = *difference.first.*parameter.value;
        const int second = *difference.second.*parameter.value;
        if (first != second)
            changes += (changes.empty() ? "" : "; ") + std::string(parameter.name) + ' ' +
                       Either(std::to_string(first), std::to_string(second));
    }
    return text + changes + '\n';
}

std::string Readable(const HeightDifference& heights) {
    std::string text;
    if (heights.differing > 0)
        text += "  " + std::to_string(heights.differing) + " cells differ, by " +
                RoundedDecimal(heights.largest, kReadableDigits) + " at most (row " +
                std::to_string(heights.row) + ", column " + std::to_string(heights.column) + ")\n";
    if (heights.firstOnly > 0)
        text += "  " + std::to_string(heights.firstOnly) + " cells are measured in the first track alone\n";
    if (heights.secondOnly > 0)
        text += "  " + std::to_string(heights.secondOnly) + " cells are measured in the second track alone\n";
    const QRect& extent = heights.extent;
    return text + "  rows " + std::to_string(extent.top()) + " to " + std::to_string(extent.bottom()) +
           ", columns " + std::to_string(extent.left()) + " to " + std::to_string(extent.right()) + '\n';
}

std::string Readable(const TrackDifference& difference) {
    if (difference.IsNone())
        return "no differences\n";
    std::string text;
    if (!difference.numbers.empty())
        text += "information\n";
    for (const NumberDifference& number : difference.numbers)
        text += "  " + number.name + ": " +
                Either(ShortestDecimal(number.first), ShortestDecimal(number.second)) + '\n';
    if (!difference.heights)
        text += "heights\n  not compared, since the maps have different dimensions\n";
    else if (!difference.heights->IsNone())
        text += "heights\n" + Readable(*difference.heights);
    if (difference.firstPaths != difference.secondPaths || !difference.points.empty())
        text += "paths\n";
    if (difference.firstPaths != difference.secondPaths)
        text += "  " + Either(std::to_string(difference.firstPaths), std::to_string(difference.secondPaths)) +
                " paths\n";
    for (const PointDifference& point : difference.points)
        text += Readable(point);
    return text;
}

QJsonValue Machine(const std::optional<PathPoint>& point) {
    if (!point)
        return {};
    return QJsonObject{{QStringLiteral("x"), point->position.x()}, {QStringLiteral("y"), point->position.y()},
                       {QStringLiteral("method"), point->method},  {QStringLiteral("length"), point->length},
                       {QStringLiteral("width"), point->width},    {QStringLiteral("space"), point->space}};
}

QJsonValue Machine(const std::optional<HeightDifference>& heights) {
    if (!heights)
        return {};
    QJsonObject object{{QStringLiteral("differing"), static_cast<qint64>(heights->differing)},
                       {QStringLiteral("firstOnly"), static_cast<qint64>(heights->firstOnly)},
                       {QStringLiteral("secondOnly"), static_cast<qint64>(heights->secondOnly)},
                       {QStringLiteral("largest"), heights->largest}};
    if (heights->differing > 0) {
        object.insert(QStringLiteral("row"), heights->row);
        object.insert(QStringLiteral("column"), heights->column);
    }
    return object;
}

QJsonObject Machine(const TrackDifference& difference) {
    QJsonArray numbers;
    for (const NumberDifference& number : difference.numbers)
        numbers.append(QJsonObject{{QStringLiteral("name"), QString::fromStdString(number.name)},
                                   {QStringLiteral("first"), number.first},
                                   {QStringLiteral("second"), number.second}});
    QJsonArray points;
    for (const PointDifference& point : difference.points)
        points.append(QJsonObject{{QStringLiteral("track"), static_cast<int>(point.path)},
                                  {QStringLiteral("segment"), static_cast<int>(point.point)},
                                  {QStringLiteral("first"), Machine(point.first)},
                                  {QStringLiteral("second"), Machine(point.second)}});
    return {{QStringLiteral("equal"), difference.IsNone()},
            {QStringLiteral("information"), numbers},
            {QStringLiteral("heights"), Machine(difference.heights)},
            {QStringLiteral("firstPaths"), static_cast<int>(difference.firstPaths)},
            {QStringLiteral("secondPaths"), static_cast<int>(difference.secondPaths)},
            {QStringLiteral("points"), points}};
}

} // namespace

CommandText DiffCommand::Text() const {
    CommandText text;
    text.name = QStringLiteral("diff");
    text.summary = QStringLiteral("Compare two tracks: information, heights and paths");
    text.arguments = QStringLiteral("TRACK TRACK");
    text.min = text.max = 2;
    text.details = QStringLiteral(
        "Heights and positions are in world units. The heights of two text tracks are compared as written,\n"
        "others as a binary track stores them. The ruler follows from the paths and is not\n"
        "compared. Paths and points are counted from 1 as in the editor, with --json from 0 as in the\n"
        "files; rows and columns from 0.\n");
    text.found = QStringLiteral("the tracks differ");
    text.options = {{QStringLiteral("tolerance"),
                     QStringLiteral("LENGTH"),
                     QStringLiteral("heights and positions that differ by no more are equal (default 0)"),
                     {}},
                    Switch(QStringLiteral("json"), QStringLiteral("print one JSON object on a line"))};
    return text;
}

ExitCode DiffCommand::Run(const Arguments& arguments) const {
    const double tolerance = arguments.Number("tolerance", 0.0, 1e300).value_or(0.0);
    const TrackDifference difference =
        Compare(LoadTrack(arguments.Words()[0]), LoadTrack(arguments.Words()[1]), tolerance);
    TextOutput output;
    output.Write(arguments.Has("json") ? JsonLine(Machine(difference)) : Readable(difference));
    output.Finish();
    return difference.IsNone() ? ExitCode::Done : ExitCode::Found;
}
