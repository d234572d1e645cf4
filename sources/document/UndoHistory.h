#pragma once

#include "document/PathStep.h"

#include <QUndoStack>

#include <cstddef>
#include <cstdint>
#include <memory>

/// The undo history of a list of paths. Bounded in number and in memory; the oldest steps are dropped first.
class UndoHistory {
  public:
    static constexpr int kMaxSteps = 1000;
    static constexpr std::size_t kMaxBytes = std::size_t{256} * 1024 * 1024;

    /// Identifies one state of the content that a track file stores. Within one history equal revisions mean
    /// equal content; a revision is never reused.
    using Revision = std::uint64_t;

    /// @param paths borrowed; it outlives the history
    explicit UndoHistory(PathList& paths, int maxSteps = kMaxSteps, std::size_t maxBytes = kMaxBytes);

    /// Makes the step. It becomes one with the step before it when both belong to the same gesture and are of
    /// the same kind; a gesture that changed nothing in the end leaves no step.
    void Push(std::unique_ptr<PathStep> step);

    /// Steps from here on belong to another gesture than those before.
    void EndGesture() { ++gesture; }

    [[nodiscard]] bool CanUndo() const;
    [[nodiscard]] bool CanRedo() const { return stack.canRedo(); }
    /// Both do nothing when there is no such step.
    void Undo();
    void Redo();

    /// Forgets all steps. @param contentChanged whether the content changed by other means than steps
    void Clear(bool contentChanged);

    [[nodiscard]] Revision CurrentRevision() const;

    /// Steps kept, undone ones included.
    [[nodiscard]] int StepCount() const { return stack.count(); }
    /// Steps kept that are not undone.
    [[nodiscard]] int Depth() const { return stack.index(); }
    /// Memory that the steps hold.
    [[nodiscard]] std::size_t Bytes() const;

  private:
    class Command;

    [[nodiscard]] const Command& At(int index) const;
    void ForgetOldest();

    PathList& paths;
    std::size_t maxBytes;
    QUndoStack stack;
    std::uint64_t gesture = 0;
    Revision base = 0; ///< while there is no step
    Revision newest = 0;
};
