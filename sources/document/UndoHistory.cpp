#include "document/UndoHistory.h"

#include <algorithm>
#include <utility>

/// A step on the stack, with the gesture that it belongs to and the revisions before and after it.
class UndoHistory::Command final : public QUndoCommand {
  public:
    Command(PathList& paths, std::unique_ptr<PathStep> step, std::uint64_t gesture, Revision before,
            Revision after)
        : paths(paths), step(std::move(step)), gesture(gesture), before(before), after(after) {}

    void redo() override {
        step->Redo(paths);
        bytes = sizeof *this + step->Bytes();
        setObsolete(step->ChangesNothing());
    }
    void undo() override {
        step->Undo(paths);
        bytes = sizeof *this + step->Bytes();
    }
    /// All steps have the same id, so that QUndoStack tries to merge each of them.
    [[nodiscard]] int id() const override { return 0; }

    bool mergeWith(const QUndoCommand* command) override {
        const auto& next = static_cast<const Command&>(*command);
        if (IsForgotten() || next.gesture != gesture || !step->MergeWith(*next.step))
            return false;
        after = next.after;
        setObsolete(step->ChangesNothing());
        return true;
    }

    [[nodiscard]] Revision Before() const { return before; }
    [[nodiscard]] Revision After() const { return after; }
    [[nodiscard]] std::size_t Bytes() const { return IsForgotten() ? 0 : bytes; }

    /// Frees the step's memory; it can no longer be undone. Const because QUndoStack returns its commands as
    /// const.
    void Forget() const { step.reset(); }
    [[nodiscard]] bool IsForgotten() const { return step == nullptr; }

  private:
    PathList& paths;
    mutable std::unique_ptr<PathStep> step;
    std::uint64_t gesture;
    Revision before;
    Revision after;
    std::size_t bytes = 0; ///< cached: they are needed at every step
};

UndoHistory::UndoHistory(PathList& paths, int maxSteps, std::size_t maxBytes)
    : paths(paths), maxBytes(maxBytes) {
    stack.setUndoLimit(maxSteps);
}

const UndoHistory::Command& UndoHistory::At(int index) const {
    return static_cast<const Command&>(*stack.command(index));
}

void UndoHistory::Push(std::unique_ptr<PathStep> step) {
    const Revision before = CurrentRevision();
    const Revision after = step->ChangesContent() ? ++newest : before;
    stack.push(new Command(paths, std::move(step), gesture, before, after));
    ForgetOldest();
}

/// QUndoStack limits only the number of steps. Those that exceed the memory limit stay on it without content.
void UndoHistory::ForgetOldest() {
    std::size_t bytes = Bytes();
    for (int index = 0; bytes > maxBytes && index < stack.count(); ++index) {
        bytes -= At(index).Bytes();
        At(index).Forget();
    }
}

bool UndoHistory::CanUndo() const {
    return stack.canUndo() && !At(stack.index() - 1).IsForgotten();
}

void UndoHistory::Undo() {
    if (CanUndo())
        stack.undo();
    EndGesture();
}

void UndoHistory::Redo() {
    stack.redo();
    EndGesture();
}

void UndoHistory::Clear(bool contentChanged) {
    base = contentChanged ? ++newest : CurrentRevision();
    stack.clear();
    EndGesture();
}

UndoHistory::Revision UndoHistory::CurrentRevision() const {
    if (stack.index() > 0)
        return At(stack.index() - 1).After();
    return stack.count() > 0 ? At(0).Before() : base;
}

std::size_t UndoHistory::Bytes() const {
    std::size_t bytes = 0;
    for (int index = 0; index < stack.count(); ++index)
        bytes += At(index).Bytes();
    return bytes;
}
