#pragma once

#include "document/PathsChange.h"
#include "document/formats/TrackPath.h"

#include <functional>
#include <vector>

/// The paths of a track, and how many of them are closed, with the few changes that all editing consists of.
/// Each change is reported once it is done. Indexes must exist; nothing here decides whether a change makes
/// sense.
class PathList {
  public:
    using Listener = std::function<void(const PathsChange& change)>;

    explicit PathList(Listener changed) : report(std::move(changed)) {}
    PathList(const PathList&) = delete;
    PathList& operator=(const PathList&) = delete;

    [[nodiscard]] const std::vector<TrackPath>& Paths() const { return paths; }
    [[nodiscard]] const TrackPath& PathOf(PointIndex at) const {
        return paths[static_cast<std::size_t>(at.path)];
    }
    /// Paths below this index are closed; a path at it, the last one, is open.
    [[nodiscard]] int FinishedCount() const { return finishedCount; }
    [[nodiscard]] int Count() const { return static_cast<int>(paths.size()); }
    /// Whether there is a point at this index; false for a negative index.
    [[nodiscard]] bool HasPoint(PointIndex at) const;

    /// Inserts a path before `index`, at most the number of paths.
    void InsertPath(int index, TrackPath path);
    TrackPath TakePath(int index);
    void SetFinishedCount(int count);
    void InsertPoint(PointIndex at, const PathPoint& point);
    void RemovePoint(PointIndex at);
    void MovePoint(PointIndex at, const QPointF& position);

    [[nodiscard]] int Parameter(PointIndex at, SegmentParameter parameter) const;
    /// Whether every point of every path has this value.
    [[nodiscard]] bool HasEverywhere(SegmentParameter parameter, int value) const;
    void SetParameter(PointIndex at, SegmentParameter parameter, int value);
    /// Exchanges the lists of one parameter, one list a path and each as long as the path's points, for those
    /// given.
    void SwapParameter(SegmentParameter parameter, std::vector<std::vector<int>>& values);

    /// Exchanges all paths, and the number of closed ones, for those given.
    void Swap(std::vector<TrackPath>& otherPaths, int& otherFinishedCount);

    /// For computing, caching and clearing ruler marks; callers change nothing else.
    [[nodiscard]] std::vector<TrackPath>& PathsForMarks() { return paths; }

  private:
    TrackPath& Path(PointIndex at) { return paths[static_cast<std::size_t>(at.path)]; }

    Listener report;
    std::vector<TrackPath> paths;
    int finishedCount = 0;
};
