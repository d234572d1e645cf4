#include "document/formats/TrackPath.h"

#include <cstdint>
#include <stdexcept>
#include <string>

namespace {

template<typename Value>
void InsertAt(std::vector<Value>& list, std::size_t index, const Value& value) {
    list.insert(list.begin() + static_cast<std::ptrdiff_t>(index), value);
}

template<typename Value>
void RemoveAt(std::vector<Value>& list, std::size_t index) {
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(index));
}

} // namespace

PathPoint TrackPath::PointAt(std::size_t index) const {
    return {points[index], methods[index], lengths[index], widths[index], spaces[index]};
}

void TrackPath::InsertPoint(std::size_t index, const PathPoint& point) {
    InsertAt(points, index, point.position);
    InsertAt(methods, index, point.method);
    InsertAt(lengths, index, point.length);
    InsertAt(widths, index, point.width);
    InsertAt(spaces, index, point.space);
}

void TrackPath::RemovePoint(std::size_t index) {
    RemoveAt(points, index);
    RemoveAt(methods, index);
    RemoveAt(lengths, index);
    RemoveAt(widths, index);
    RemoveAt(spaces, index);
}

void AppendPoint(int track, const PathPoint& point, std::vector<TrackPath>& paths) {
    if (track == static_cast<std::int64_t>(paths.size()))
        paths.emplace_back();
    else if (paths.empty())
        throw std::runtime_error("A point of path " + std::to_string(track) + " comes before the first path");
    paths.back().AppendPoint(point);
}
