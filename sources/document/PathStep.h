#pragma once

#include "document/PathList.h"

#include <cstddef>
#include <vector>

/// One change to the paths that can be undone and redone. It holds only what it changed.
///
/// Redo makes the change, the first time too; Undo restores paths and the number of closed ones as they were
/// before, bit for bit but for ruler marks, which are derived. They are called alternately.
class PathStep {
  public:
    PathStep() = default;
    PathStep(const PathStep&) = delete;
    PathStep& operator=(const PathStep&) = delete;
    virtual ~PathStep() = default;

    virtual void Redo(PathList& paths) = 0;
    virtual void Undo(PathList& paths) = 0;

    /// Takes over the change of `next`, which was made right after this one in the same gesture.
    /// @return false when the two are different steps
    virtual bool MergeWith(const PathStep& /*next*/) { return false; }

    /// Whether the state after the step is the one before it.
    [[nodiscard]] virtual bool ChangesNothing() const { return false; }

    /// Whether the step changes what a track file stores.
    [[nodiscard]] virtual bool ChangesContent() const { return true; }

    /// Memory held outside the object itself.
    [[nodiscard]] virtual std::size_t Bytes() const { return 0; }
};

/// A new path with one point, after all others; it is open.
class AddPathStep final : public PathStep {
  public:
    explicit AddPathStep(const PathPoint& newPoint) : point(newPoint) {}
    void Redo(PathList& paths) override;
    void Undo(PathList& paths) override;

  private:
    PathPoint point;
};

/// A point inserted into a path.
class InsertPointStep final : public PathStep {
  public:
    InsertPointStep(PointIndex place, const PathPoint& newPoint) : at(place), point(newPoint) {}
    void Redo(PathList& paths) override;
    void Undo(PathList& paths) override;

  private:
    PointIndex at;
    PathPoint point;
};

/// A point removed from a path that keeps others.
class RemovePointStep final : public PathStep {
  public:
    explicit RemovePointStep(PointIndex place) : at(place) {}
    void Redo(PathList& paths) override;
    void Undo(PathList& paths) override;

  private:
    PointIndex at;
    PathPoint point;
};

/// A path removed; every path that remains is closed.
class RemovePathStep final : public PathStep {
  public:
    explicit RemovePathStep(int pathIndex) : index(pathIndex) {}
    void Redo(PathList& paths) override;
    void Undo(PathList& paths) override;
    [[nodiscard]] std::size_t Bytes() const override;

  private:
    int index;
    TrackPath path;
    int finishedCount = 0; ///< before
};

/// All paths exchanged for others; removing every path is the usual case.
class ReplaceAllStep final : public PathStep {
  public:
    ReplaceAllStep() = default;
    void Redo(PathList& paths) override;
    void Undo(PathList& paths) override;
    [[nodiscard]] std::size_t Bytes() const override;

  private:
    std::vector<TrackPath> others; ///< those that are not in the list now
    int othersFinishedCount = 0;
};

/// A point moved; a whole drag is one such step.
class MovePointStep final : public PathStep {
  public:
    MovePointStep(PointIndex place, const QPointF& position) : at(place), to(position) {}
    void Redo(PathList& paths) override;
    void Undo(PathList& paths) override;
    bool MergeWith(const PathStep& next) override;
    [[nodiscard]] bool ChangesNothing() const override;

  private:
    PointIndex at;
    QPointF from;
    QPointF to;
};

/// A number of open paths closed. A file does not store which paths are closed.
class ClosePathsStep final : public PathStep {
  public:
    explicit ClosePathsStep(int pathCount) : count(pathCount) {}
    void Redo(PathList& paths) override;
    void Undo(PathList& paths) override;
    [[nodiscard]] bool ChangesContent() const override { return false; }

  private:
    int count;
};

/// A parameter of one segment set; what is typed into one field for it is one such step.
class SetParameterStep final : public PathStep {
  public:
    SetParameterStep(PointIndex place, SegmentParameter which, int value)
        : at(place), parameter(which), after(value) {}
    void Redo(PathList& paths) override;
    void Undo(PathList& paths) override;
    bool MergeWith(const PathStep& next) override;
    [[nodiscard]] bool ChangesNothing() const override { return before == after; }

  private:
    PointIndex at;
    SegmentParameter parameter;
    int before = 0;
    int after;
};

/// A parameter of every point of every path set.
class SetParameterEverywhereStep final : public PathStep {
  public:
    SetParameterEverywhereStep(const PathList& paths, SegmentParameter which, int newValue);
    void Redo(PathList& paths) override;
    void Undo(PathList& paths) override;
    bool MergeWith(const PathStep& next) override;
    [[nodiscard]] bool ChangesNothing() const override;
    [[nodiscard]] std::size_t Bytes() const override;

  private:
    SegmentParameter parameter;
    int value;
    std::vector<std::vector<int>> others; ///< the lists that are not in the paths now, one a path
};
