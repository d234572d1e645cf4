#include "SmallTrack.h"

#include <utility>

independent::Track SmallTrack(std::vector<independent::Segment> segments, int width, int height) {
    independent::Track track;
    track.xResolution = 0.5;
    track.yResolution = 0.25;
    track.zResolution = 0.25;
    track.xOffset = 10;
    track.yOffset = 20;
    track.width = width;
    track.height = height;
    for (int column = 0; column < width; ++column)
        track.columnPositions.push_back(track.xOffset + column * track.xResolution);
    for (int row = 0; row < height; ++row) {
        track.rowPositions.push_back(track.yOffset + row * track.yResolution);
        for (int column = 0; column < width; ++column) {
            track.heights.emplace_back(column + row * track.zResolution);
            track.cells.push_back(static_cast<std::int16_t>(4 * column + row));
        }
    }
    track.segments = std::move(segments);
    for (independent::Segment& point : track.segments) {
        point.x = point.relativeX * (width * track.xResolution) + track.xOffset;
        point.y = point.relativeY * (height * track.yResolution) + track.yOffset;
    }
    return track;
}

std::vector<independent::Segment> PathAcross(int path, int points, double y, int base) {
    std::vector<independent::Segment> segments;
    for (int point = 0; point < points; ++point) {
        const double x = (point + 1.0) / (points + 1.0);
        segments.push_back({path, point, 0, 0, x, y, 1, base + point, base + 10 + point, base + 20 + point});
    }
    return segments;
}
