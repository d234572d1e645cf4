#include "CsvPaths.h"

#include "CsvLine.h"

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
        if (!source.HasNext())
            throw std::runtime_error("Invalid item count=" + std::to_string(line.FieldCount()) +
                                     " for a point of a path");
        field = source.Next();
    }
    return fields;
}

} // namespace

void AppendPathPoint(const CsvLine& line, std::vector<TrackPath>& paths) {
    const Fields fields = PathFields(line);
    const std::int32_t number = ToInt32(fields[Track]);
    if (number == static_cast<std::int64_t>(paths.size()))
        paths.emplace_back();
    else if (paths.empty())
        throw std::runtime_error("A point of path " + std::to_string(number) +
                                 " comes before the first path");
    TrackPath& path = paths.back();
    path.points.emplace_back(ToDouble(fields[RelativeX]), ToDouble(fields[RelativeY]));
    path.methods.push_back(ToInt32(fields[Method]));
    path.lengths.push_back(ToInt32(fields[Length]));
    path.widths.push_back(ToInt32(fields[Width]));
    path.spaces.push_back(ToInt32(fields[Space]));
}
