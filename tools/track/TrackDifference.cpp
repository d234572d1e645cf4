#include "tools/track/TrackDifference.h"

#include "tools/track/SavePaths.h"

#include <algorithm>
#include <cmath>

namespace {

/// Whether two numbers are equal within the tolerance; NaN equals NaN.
bool AreEqual(double one, double other, double tolerance) {
    return one == other || std::abs(one - other) <= tolerance || (std::isnan(one) && std::isnan(other));
}

std::vector<NumberDifference> CompareNumbers(const TrackInfo& first, const TrackInfo& second) {
    std::vector<NumberDifference> differences;
    const auto compare = [&](const char* name, auto member) {
        const auto one = static_cast<double>(first.*member);
        const auto other = static_cast<double>(second.*member);
        if (!AreEqual(one, other, 0.0))
            differences.push_back({name, one, other});
    };
    compare("xResolution", &TrackInfo::xResolution);
    compare("yResolution", &TrackInfo::yResolution);
    compare("zResolution", &TrackInfo::zResolution);
    compare("xOffset", &TrackInfo::xOffset);
    compare("yOffset", &TrackInfo::yOffset);
    compare("zOffset", &TrackInfo::zOffset);
    compare("width", &TrackInfo::width);
    compare("height", &TrackInfo::height);
    compare("anchorX", &TrackInfo::anchorX);
    compare("anchorY", &TrackInfo::anchorY);
    compare("anchorAngle", &TrackInfo::anchorAngle);
    return differences;
}

/// Collects the cells of two maps that differ.
class HeightComparison {
  public:
    explicit HeightComparison(double tolerance) : tolerance(tolerance) {}

    void Add(int row, int column, double first, double second) {
        if (AreEqual(first, second, tolerance))
            return;
        found.extent |= QRect(column, row, 1, 1);
        if (std::isnan(second))
            ++found.firstOnly;
        else if (std::isnan(first))
            ++found.secondOnly;
        else
            AddDifference(row, column, std::abs(first - second));
    }

    [[nodiscard]] const HeightDifference& Found() const { return found; }

  private:
    void AddDifference(int row, int column, double difference) {
        ++found.differing;
        if (difference <= found.largest)
            return;
        found.largest = difference;
        found.row = row;
        found.column = column;
    }

    double tolerance;
    HeightDifference found;
};

HeightDifference CompareHeights(const LoadedTrack& first, const LoadedTrack& second, double tolerance) {
    const bool asWritten = first.encoding == TrackEncoding::Text && second.encoding == TrackEncoding::Text;
    const std::vector<double> one = asWritten ? LoadHeights(first) : LoadStoredHeights(first);
    const std::vector<double> other = asWritten ? LoadHeights(second) : LoadStoredHeights(second);
    HeightComparison comparison(tolerance);
    std::size_t cell = 0;
    for (int row = 0; row < first.info.height; ++row)
        for (int column = 0; column < first.info.width; ++column, ++cell)
            comparison.Add(row, column, one[cell], other[cell]);
    return comparison.Found();
}

bool HaveSameParameters(const PathPoint& one, const PathPoint& other) {
    return one.method == other.method && one.length == other.length && one.width == other.width &&
           one.space == other.space;
}

/// A point of a track with its world position; nullopt if it does not exist.
std::optional<PathPoint> PointOf(const LoadedTrack& track, std::size_t path, std::size_t point) {
    if (path >= track.paths.size() || point >= track.paths[path].points.size())
        return std::nullopt;
    PathPoint found = track.paths[path].PointAt(point);
    found.position = WorldOf(track.info).PointOf(found.position);
    return found;
}

std::size_t CountPoints(const LoadedTrack& track, std::size_t path) {
    return path < track.paths.size() ? track.paths[path].points.size() : 0;
}

std::vector<PointDifference> ComparePaths(const LoadedTrack& first, const LoadedTrack& second,
                                          double tolerance) {
    std::vector<PointDifference> differences;
    for (std::size_t path = 0; path < std::max(first.paths.size(), second.paths.size()); ++path) {
        const std::size_t points = std::max(CountPoints(first, path), CountPoints(second, path));
        for (std::size_t point = 0; point < points; ++point) {
            const auto one = PointOf(first, path, point);
            const auto other = PointOf(second, path, point);
            if (one && other && HaveSameParameters(*one, *other) &&
                AreEqual(one->position.x(), other->position.x(), tolerance) &&
                AreEqual(one->position.y(), other->position.y(), tolerance))
                continue;
            differences.push_back({path, point, one, other});
        }
    }
    return differences;
}

} // namespace

bool TrackDifference::IsNone() const {
    return numbers.empty() && heights && heights->IsNone() && firstPaths == secondPaths && points.empty();
}

TrackDifference Compare(const LoadedTrack& first, const LoadedTrack& second, double tolerance) {
    TrackDifference difference;
    difference.numbers = CompareNumbers(first.info, second.info);
    if (first.info.width == second.info.width && first.info.height == second.info.height)
        difference.heights = CompareHeights(first, second, tolerance);
    difference.firstPaths = first.paths.size();
    difference.secondPaths = second.paths.size();
    difference.points = ComparePaths(first, second, tolerance);
    return difference;
}
