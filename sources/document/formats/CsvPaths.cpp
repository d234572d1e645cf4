#include "document/formats/CsvPaths.h"

#include "document/formats/Converter.h"
#include "document/formats/CsvScan.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace {

/// The columns of the path section.
enum Column { Track, Segment, X, Y, RelativeX, RelativeY, Method, Length, Width, Space, kColumnCount };

using Fields = std::array<std::string_view, kColumnCount>;

Fields PathFields(const CsvLine& line) {
    Fields fields;
    CsvFields source(line);
    for (std::string_view& field : fields) {
        if (!source.HasNext()) {
            line.LogPlace();
            throw std::runtime_error("Invalid item count=" + std::to_string(line.FieldCount()) +
                                     " for a point of a path");
        }
        field = source.Next();
    }
    return fields;
}

constexpr int kSignificantDigits = 6;
constexpr int kRoundTripDigits = 17; ///< with so many digits every double reads back exactly

/// One line of numbers joined by commas: integers in full, others in the general format, whatever the
/// process's locale.
class NumberLine {
  public:
    explicit NumberLine(AtomicFile& atomicFile) : file(atomicFile) {}

    NumberLine& Add(std::int64_t number) {
        Begin();
        return Take(std::to_chars(text.data(), text.data() + text.size(), number));
    }

    NumberLine& Add(double number, int digits = kSignificantDigits) {
        Begin();
        return Take(std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::general,
                                  digits));
    }

    NumberLine& Add(const QPointF& point, int digits = kSignificantDigits) {
        return Add(double{point.x()}, digits).Add(double{point.y()}, digits);
    }

    void End() {
        file.Write("\n");
        first = true;
    }

  private:
    void Begin() {
        if (!first)
            file.Write(",");
        first = false;
    }

    NumberLine& Take(std::to_chars_result result) {
        file.Write(text.data(), static_cast<std::size_t>(result.ptr - text.data()));
        return *this;
    }

    AtomicFile& file;
    std::array<char, 32> text{};
    bool first = true;
};

std::int64_t Index(std::size_t index) {
    return static_cast<std::int64_t>(index);
}

/// Copies the lines before the first line of a ruler section. @return whether an anchor section is among them
bool CopyUpToRulers(TextLines& lines, AtomicFile& file) {
    bool hasAnchor = false;
    CsvLine fields;
    for (std::string_view line; lines.Next(line);) {
        fields.Split(line);
        if (fields.StartsWith("Ruler"))
            break;
        hasAnchor = hasAnchor || fields.StartsWith("Anchor");
        file.Write(line);
        file.Write("\n");
    }
    return hasAnchor;
}

class PathSections {
  public:
    PathSections(AtomicFile& atomicFile, const WorldTransform& worldTransform)
        : file(atomicFile), line(atomicFile), transform(worldTransform) {}

    void WriteRulerSection(const std::vector<TrackPath>& paths) {
        file.Write("Ruler\nRuler,Track,Segment,X1,Y1,X2,Y2,Method,Width\n");
        for (std::size_t i = 0; i < paths.size(); ++i)
            WriteRulers(paths[i], i);
        file.Write("End\n\n");
    }

    /// @param digits of the relative coordinates, which are what is read back
    void WriteSegmentSection(const std::vector<TrackPath>& paths, int digits) {
        file.Write("Segment\nTrack,Segment,X,Y,RelativeX,RelativeY,Method,Length,Width,Space\n");
        for (std::size_t i = 0; i < paths.size(); ++i)
            WritePoints(paths[i], i, digits);
        file.Write("End\n");
    }

  private:
    void WriteRulers(const TrackPath& path, std::size_t pathIndex) {
        for (std::size_t segment = 0; segment < path.rulerMarks.size(); ++segment) {
            const RulerMarks& marks = path.rulerMarks[segment];
            for (std::size_t tick = 0; tick < marks.tickStarts.size(); ++tick) {
                line.Add(rulerNumber++).Add(Index(pathIndex)).Add(Index(segment));
                line.Add(transform.PointOf(marks.tickStarts[tick]));
                line.Add(transform.PointOf(marks.tickEnds.at(tick)));
                line.Add(std::int64_t{path.methods.at(segment)});
                line.Add(transform.WidthOf(path.widths.at(segment)));
                line.End();
            }
        }
    }

    void WritePoints(const TrackPath& path, std::size_t pathIndex, int digits) {
        for (std::size_t point = 0; point < path.points.size(); ++point) {
            line.Add(Index(pathIndex)).Add(Index(point));
            line.Add(transform.PointOf(path.points[point])).Add(path.points[point], digits);
            for (const std::vector<int>* list : {&path.methods, &path.lengths, &path.widths, &path.spaces})
                line.Add(std::int64_t{list->at(point)});
            line.End();
        }
    }

    AtomicFile& file;
    NumberLine line;
    const WorldTransform& transform;
    std::int64_t rulerNumber = 0;
};

} // namespace

void AppendPathPoint(const CsvLine& line, std::vector<TrackPath>& paths) {
    const Fields fields = PathFields(line);
    PathPoint point;
    point.position = {ToDouble(fields[RelativeX]), ToDouble(fields[RelativeY])};
    point.method = ToInt32(fields[Method]);
    point.length = ToInt32(fields[Length]);
    point.width = ToInt32(fields[Width]);
    point.space = ToInt32(fields[Space]);
    AppendPoint(ToInt32(fields[Track]), point, paths);
}

int WriteCsvPaths(const std::string& original, const std::string& target, const std::vector<TrackPath>& paths,
                  const WorldTransform& transform) {
    TextLines lines(original);
    if (!lines.IsOpen())
        return kOriginalNotReadable;
    AtomicFile file(target);
    if (!file.IsOpen())
        return kTargetNotWritable;
    if (!CopyUpToRulers(lines, file))
        file.Write("Anchor\nX,Y,Angle\n0,0,0\nEnd\n\n");
    lines.Close(); // it may be the target
    PathSections sections(file, transform);
    sections.WriteRulerSection(paths);
    sections.WriteSegmentSection(paths, kSignificantDigits);
    return CommitTarget(file, target);
}

int WriteCsvPathsAlone(const std::string& target, const std::vector<TrackPath>& paths) {
    AtomicFile file(target);
    if (!file.IsOpen())
        return kTargetNotWritable;
    const WorldTransform none;
    PathSections(file, none).WriteSegmentSection(paths, kRoundTripDigits);
    return CommitTarget(file, target);
}
