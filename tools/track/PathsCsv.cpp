#include "tools/track/PathsText.h"

#include "basalt/InputFile.h"
#include "document/formats/CsvScan.h"
#include "tools/commandline/DecimalText.h"
#include "tools/commandline/Failure.h"
#include "tools/track/LoadedTrack.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <exception>
#include <optional>

namespace {

enum Column { Track, Segment, X, Y, RelativeX, RelativeY, Method, Length, Width, Space, kColumns };

constexpr std::array<std::string_view, kColumns> kNames = {
    "Track", "Segment", "X", "Y", "RelativeX", "RelativeY", "Method", "Length", "Width", "Space"};

/// Reads one file.
class CsvPathsReader {
  public:
    CsvPathsReader(const std::string& file, const WorldTransform& world, Coordinates coordinates)
        : file(file), world(world), coordinates(coordinates), lines(file) {}

    std::vector<TrackPath> Read() {
        try {
            ReadHeader();
            while (Next() && line.First() != "End")
                ReadPoint();
            return std::move(paths);
        } catch (const Failure&) {
            throw;
        } catch (const std::exception& failure) { // a bad escape, a line that is too long
            Fail(failure.what());
        }
    }

  private:
    /// Moves to the next line that is not empty.
    bool Next() {
        std::string_view text;
        do {
            if (!lines.Next(text))
                return false;
            ++number;
        } while (text.empty());
        line.Split(text);
        return true;
    }

    void ReadHeader() {
        bool found = Next();
        if (found && line.Text() == "Segment") // the first line of a text track's path section
            found = Next();
        if (!found)
            Fail("no header line");
        for (CsvFields fields(line); fields.HasNext();) {
            const std::string_view name = fields.Next();
            const auto* const known = std::find(kNames.begin(), kNames.end(), name);
            if (known == kNames.end())
                Fail("unknown column '" + std::string(name) + "'");
            header.push_back(static_cast<Column>(known - kNames.begin()));
        }
        Require(Track);
        Require(coordinates == Coordinates::World ? X : RelativeX);
        Require(coordinates == Coordinates::World ? Y : RelativeY);
    }

    void Require(Column column) const {
        if (std::count(header.begin(), header.end(), column) != 1)
            Fail("column " + std::string(kNames[column]) + " is required exactly once");
    }

    void ReadPoint() {
        if (line.FieldCount() != header.size())
            Fail(std::to_string(line.FieldCount()) + " fields in place of " + std::to_string(header.size()));
        std::array<std::optional<std::string_view>, kColumns> values;
        CsvFields fields(line);
        for (const Column column : header)
            values[column] = fields.Next();
        const std::int32_t track = Integer(Track, *values[Track]);
        if (track != static_cast<std::int64_t>(paths.size()) &&
            track + 1 != static_cast<std::int64_t>(paths.size()))
            Fail("Track " + std::to_string(track) +
                 " neither continues the previous Track nor starts Track " + std::to_string(paths.size()));
        const std::size_t points =
            track == static_cast<std::int64_t>(paths.size()) ? 0 : paths.back().points.size();
        if (values[Segment] && Integer(Segment, *values[Segment]) != static_cast<std::int64_t>(points))
            Fail("Segment is " + std::string(*values[Segment]) + " where " + std::to_string(points) +
                 " was expected");
        AppendPoint(track, PointOf(values), paths);
    }

    [[nodiscard]] PathPoint
    PointOf(const std::array<std::optional<std::string_view>, kColumns>& values) const {
        PathPoint point;
        if (coordinates == Coordinates::World)
            point.position = NormalisedPoint({Number(X, *values[X]), Number(Y, *values[Y])}, world);
        else
            point.position = {Number(RelativeX, *values[RelativeX]), Number(RelativeY, *values[RelativeY])};
        if (!std::isfinite(point.position.x()) || !std::isfinite(point.position.y()))
            Fail("the point has no place in the track");
        const auto take = [&](Column column, int& parameter) {
            if (values[column])
                parameter = Integer(column, *values[column]);
        };
        take(Method, point.method);
        take(Length, point.length);
        take(Width, point.width);
        take(Space, point.space);
        return point;
    }

    [[nodiscard]] double Number(Column column, std::string_view text) const {
        const std::optional<double> value = ParseNumber(text);
        if (!value)
            Fail(std::string(kNames[column]) + " is '" + std::string(text) + "', not a number");
        return *value;
    }

    [[nodiscard]] std::int32_t Integer(Column column, std::string_view text) const {
        const std::optional<std::int32_t> value = ParseInteger(text);
        if (!value)
            Fail(std::string(kNames[column]) + " is '" + std::string(text) + "', not an integer");
        return *value;
    }

    [[noreturn]] void Fail(const std::string& reason) const {
        throw Failure(ExitCode::Unreadable, file + ": line " + std::to_string(number) + ": " + reason);
    }

    std::string file;
    WorldTransform world;
    Coordinates coordinates;
    TextLines lines;
    CsvLine line;
    std::int64_t number = 0;
    std::vector<Column> header;
    std::vector<TrackPath> paths;
};

std::string Row(std::size_t path, std::size_t index, const PathPoint& point, const QPointF& place) {
    std::string row = std::to_string(path) + ',' + std::to_string(index);
    for (const double number : {place.x(), place.y(), point.position.x(), point.position.y()})
        row += ',' + ShortestDecimal(number);
    for (const int number : {point.method, point.length, point.width, point.space})
        row += ',' + std::to_string(number);
    return row + '\n';
}

} // namespace

std::string PathsAsCsv(const std::vector<TrackPath>& paths, const WorldTransform& world) {
    std::string text;
    for (const std::string_view name : kNames)
        text.append(text.empty() ? "" : ",").append(name);
    text += '\n';
    for (std::size_t path = 0; path < paths.size(); ++path)
        for (std::size_t index = 0; index < paths[path].points.size(); ++index) {
            const PathPoint point = paths[path].PointAt(index);
            text += Row(path, index, point, world.PointOf(point.position));
        }
    return text;
}

std::vector<TrackPath> PathsFromCsv(const std::string& file, const WorldTransform& world,
                                    Coordinates coordinates) {
    RequireFile(file);
    return CsvPathsReader(file, world, coordinates).Read();
}
