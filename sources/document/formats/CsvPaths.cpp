#include "document/formats/CsvPaths.h"

#include "document/formats/CsvLine.h"

#include <array>
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
