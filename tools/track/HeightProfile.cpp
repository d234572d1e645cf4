#include "tools/track/HeightProfile.h"

#include "tools/commandline/DecimalText.h"
#include "tools/commandline/Failure.h"
#include "tools/track/SavePaths.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double kMaxSamples = 10'000'000;

/// Finds the height at a place of a track.
class HeightLookup {
  public:
    explicit HeightLookup(const LoadedTrack& track) : info(track.info), heights(LoadHeights(track)) {}

    /// @param relative the place, normalised to the map
    void Fill(const QPointF& relative, ProfileSample& sample) const {
        sample.column = Index(relative.x(), info.width);
        sample.row = Index(relative.y(), info.height);
        if (!sample.column || !sample.row)
            return;
        const double height =
            heights[static_cast<std::size_t>(*sample.row) * static_cast<std::size_t>(info.width) +
                    static_cast<std::size_t>(*sample.column)];
        if (!std::isnan(height))
            sample.height = height;
    }

  private:
    /// The right and the lower border belong to the last cells.
    static std::optional<std::int32_t> Index(double relative, std::int32_t count) {
        if (!(relative >= 0.0 && relative <= 1.0))
            return std::nullopt;
        return std::min(static_cast<std::int32_t>(relative * count), count - 1);
    }

    const TrackInfo& info;
    std::vector<double> heights;
};

double StepFor(const LoadedTrack& track, std::optional<double> step) {
    const double used = step.value_or(std::min(track.info.xResolution, track.info.yResolution));
    if (!(used > 0.0) || !std::isfinite(used))
        throw Failure(ExitCode::Misused,
                      track.file + ": its resolutions give no step: choose one with --step");
    return used;
}

/// The number of steps to the end of the path, the last one possibly shorter.
std::int64_t CountSteps(const LoadedTrack& track, double length, double step) {
    if (!std::isfinite(length))
        throw Failure(ExitCode::Unreadable, track.file + ": the path has points that are not finite");
    if (length / step > kMaxSamples)
        throw Failure(ExitCode::Misused,
                      track.file + ": more than 10 million steps: choose a larger one with --step");
    return static_cast<std::int64_t>(std::ceil(length / step));
}

std::string Field(const std::optional<std::int32_t>& number) {
    return number ? std::to_string(*number) : std::string();
}

} // namespace

std::vector<double> DistancesOf(const TrackPath& path, const WorldTransform& world) {
    std::vector<double> distances = {0.0};
    for (std::size_t point = 1; point < path.points.size(); ++point) {
        const QPointF step = world.PointOf(path.points[point]) - world.PointOf(path.points[point - 1]);
        distances.push_back(distances.back() + std::hypot(step.x(), step.y()));
    }
    return distances;
}

HeightProfile ProfileAlong(const LoadedTrack& track, std::size_t path, std::optional<double> step) {
    const std::vector<QPointF>& points = track.paths[path].points;
    const WorldTransform world = WorldOf(track.info);
    HeightProfile profile{{}, DistancesOf(track.paths[path], world)};
    const double length = profile.points.back();
    const double used = StepFor(track, step);
    const std::int64_t steps = CountSteps(track, length, used);
    const HeightLookup lookup(track);
    std::size_t segment = 0;
    for (std::int64_t i = 0; i <= steps; ++i) {
        ProfileSample sample;
        sample.distance = std::min(static_cast<double>(i) * used, length);
        while (segment + 2 < points.size() && sample.distance >= profile.points[segment + 1])
            ++segment;
        const std::size_t end = std::min(segment + 1, points.size() - 1);
        const double ofSegment = profile.points[end] - profile.points[segment];
        const double part = ofSegment > 0.0 ? (sample.distance - profile.points[segment]) / ofSegment : 0.0;
        const QPointF relative = points[segment] * (1.0 - part) + points[end] * part;
        sample.segment = segment;
        sample.place = world.PointOf(relative);
        lookup.Fill(relative, sample);
        profile.samples.push_back(sample);
    }
    return profile;
}

std::string ProfileAsCsv(const HeightProfile& profile) {
    std::string text = "Distance,X,Y,Segment,Column,Row,Height\n";
    for (const ProfileSample& sample : profile.samples)
        text += ShortestDecimal(sample.distance) + ',' + ShortestDecimal(sample.place.x()) + ',' +
                ShortestDecimal(sample.place.y()) + ',' + std::to_string(sample.segment) + ',' +
                Field(sample.column) + ',' + Field(sample.row) + ',' +
                (sample.height ? ShortestDecimal(*sample.height) : std::string()) + '\n';
    return text;
}
