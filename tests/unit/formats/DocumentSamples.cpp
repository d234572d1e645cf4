#include "DocumentSamples.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

independent::Track SampleTrack() {
    independent::Track track;
    track.xResolution = 0.25;
    track.yResolution = 0.5;
    track.zResolution = 0.125;
    track.xOffset = -50;
    track.yOffset = 12.5;
    track.zOffset = 600;
    track.width = 5;
    track.height = 3;
    track.cells = {-8,  0,  8,  16, independent::kNoMeasurement, 24, 32, 40,
                   -40, 48, 56, 64, independent::kNoMeasurement, 72, 80};
    track.columnPositions = {-50, -49.75, -49.5, -49.25, -49};
    track.rowPositions = {12.5, 13, 13.5};
    for (const std::int16_t cell : track.cells) {
        const bool measured = cell != independent::kNoMeasurement;
        track.heights.push_back(measured ? std::optional(cell * 0.125 + 600) : std::nullopt);
    }
    track.anchor = {1.5, -2.25, 30};
    return track;
}

std::vector<TrackPath> SamplePaths() {
    TrackPath first;
    first.points = {{0.25, 0.5}, {0.75, 0.125}, {1.5, -0.25}};
    first.methods = {1, 2, 3};
    first.lengths = {100, 60, 80};
    first.widths = {50, 30, 20};
    first.spaces = {99, 40, 70};
    first.rulerMarks.resize(2);
    first.rulerMarks[0].tickStarts = {{0.25, 0.375}, {0.5, 0.25}};
    first.rulerMarks[0].tickEnds = {{0.125, 0.625}, {0.375, 0.5}};
    first.rulerMarks[1].tickStarts = {{0.875, 0.0625}};
    first.rulerMarks[1].tickEnds = {{0.9375, 0.03125}};
    TrackPath second;
    second.points = {{0.5, 0.625}};
    second.methods = {4};
    second.lengths = {7};
    second.widths = {-8};
    second.spaces = {9};
    return {first, second};
}

WorldTransform SampleTransform() {
    WorldTransform transform;
    transform.widthScale = 0.25;
    transform.xOffset = -50;
    transform.yOffset = 12.5;
    transform.xScale = 4;
    transform.yScale = 8;
    return transform;
}

TrackInfo InfoOf(const independent::Track& track) {
    TrackInfo info;
    info.xResolution = track.xResolution;
    info.yResolution = track.yResolution;
    info.zResolution = track.zResolution;
    info.xOffset = track.xOffset;
    info.yOffset = track.yOffset;
    info.zOffset = track.zOffset;
    info.width = track.width;
    info.height = track.height;
    info.anchorX = track.anchor[0];
    info.anchorY = track.anchor[1];
    info.anchorAngle = track.anchor[2];
    return info;
}

void SetRecords(independent::Track& track, const std::vector<TrackPath>& paths,
                const WorldTransform& transform) {
    const auto worldX = [&](const QPointF& point) {
        return point.x() * transform.xScale + transform.xOffset;
    };
    const auto worldY = [&](const QPointF& point) {
        return point.y() * transform.yScale + transform.yOffset;
    };
    track.rulers.clear();
    track.segments.clear();
    for (std::size_t i = 0; i < paths.size(); ++i) {
        const TrackPath& path = paths[i];
        const auto pathIndex = static_cast<std::int32_t>(i);
        for (std::size_t j = 0; j < path.rulerMarks.size(); ++j) {
            const RulerMarks& marks = path.rulerMarks[j];
            for (std::size_t k = 0; k < marks.tickStarts.size(); ++k) {
                track.rulers.push_back(
                    {static_cast<std::int32_t>(track.rulers.size()), pathIndex, static_cast<std::int32_t>(j),
                     worldX(marks.tickStarts[k]), worldY(marks.tickStarts[k]), worldX(marks.tickEnds[k]),
                     worldY(marks.tickEnds[k]), path.methods[j], path.widths[j] * transform.widthScale});
            }
        }
        for (std::size_t j = 0; j < path.points.size(); ++j) {
            const QPointF& point = path.points[j];
            track.segments.push_back({pathIndex, static_cast<std::int32_t>(j), worldX(point), worldY(point),
                                      point.x(), point.y(), path.methods[j], path.lengths[j], path.widths[j],
                                      path.spaces[j]});
        }
    }
}

independent::Track TrackWithPaths() {
    independent::Track track = SampleTrack();
    SetRecords(track, SamplePaths(), SampleTransform());
    return track;
}

int UpdateWith(Converter& converter, const std::string& original, const std::string& target,
               const std::vector<TrackPath>& paths) {
    const WorldTransform t = SampleTransform();
    return converter.UpdatePath(original, target, paths, t.widthScale, t.xOffset, t.yOffset, t.xScale,
                                t.yScale);
}

std::vector<TrackPath> WithoutMarks(std::vector<TrackPath> paths) {
    for (TrackPath& path : paths)
        path.rulerMarks.clear();
    return paths;
}

void ExpectSamePaths(const std::vector<TrackPath>& actual, const std::vector<TrackPath>& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i) {
        SCOPED_TRACE("path " + std::to_string(i));
        ASSERT_EQ(actual[i].points.size(), expected[i].points.size());
        for (std::size_t j = 0; j < actual[i].points.size(); ++j) {
            // QPointF's own comparison is not exact.
            EXPECT_EQ(actual[i].points[j].x(), expected[i].points[j].x()) << j;
            EXPECT_EQ(actual[i].points[j].y(), expected[i].points[j].y()) << j;
        }
        EXPECT_EQ(actual[i].methods, expected[i].methods);
        EXPECT_EQ(actual[i].lengths, expected[i].lengths);
        EXPECT_EQ(actual[i].widths, expected[i].widths);
        EXPECT_EQ(actual[i].spaces, expected[i].spaces);
        EXPECT_TRUE(actual[i].rulerMarks.empty());
    }
}

std::vector<std::string> NamesHere() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator("."))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}
