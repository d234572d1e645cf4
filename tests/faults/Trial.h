#pragma once

#include "FileCalls.h"
#include "OperatorFiles.h"

#include <string>
#include <string_view>

/// One run of one scenario with one fault.
struct Trial {
    Fault fault = Fault::None;
    long at = 0;        ///< the call that it falls on, from 1
    int freePages = -1; ///< in place of a fault: a file system of its own with this much room; -1 for none
};

/// What a scenario has to do with a trial. Everything here runs in a process of its own, whose working folder
/// is an empty one.
class TrialScenario {
  public:
    /// @param reads the faults fall on the calls that read, in place of those that change something
    explicit TrialScenario(bool reads) : reads(reads) {}
    TrialScenario(const TrialScenario&) = delete;
    TrialScenario& operator=(const TrialScenario&) = delete;
    virtual ~TrialScenario() = default;

    [[nodiscard]] bool Reads() const { return reads; }
    /// Says what has to be watched before a run.
    virtual void Arrange(FileCallReport& report) const { report.reads = reads; }
    /// The scenario from its beginning, the fault on the way, and the same operation once more without one.
    virtual Problems Run(const Trial& trial, FileCallReport& report) const = 0;
    /// What a killed run has left, and the scenario from its beginning, without a fault.
    virtual Problems RunAfterKill() const = 0;

  private:
    bool reads;
};

/// Says what the fault was.
std::string Describe(const Trial& trial, const FileCallReport& report);

/// Whether an operation may succeed although this call of it failed: what is removed may stay until the next
/// time; for renaming, changing permissions and opening a file without a name there is another way, whose
/// outcome is checked, as there is for copying within the system; a folder that was made before exists; a
/// text track whose encoding cannot be told is read as a text; what a folder holds may be known before its
/// end is met, or be what a dialog shows.
bool MayBeSurvived(const FileCallReport& report);
/// Whether the fault was meant for a call of this name.
bool FallsOn(const FileCallReport& report, std::string_view name);

/// What an operation has said.
struct Answer {
    bool succeeded = false;
    bool shown = false; ///< a failure was shown in every place that it has to be shown in
    bool lessDone =
        false; ///< the log says that something beside it was left undone, which stops no operation
};

/// Judges by the fault what an operation has said: a short write is no failure; any other fault is reported
/// in one way or the other, unless it may be survived.
void JudgeAnswer(Problems& problems, const FileCallReport& report, const Answer& answer);

/// The folder that counts for trials: it becomes a file system of its own when the trial wants one.
class TrialDisk {
  public:
    /// Makes `folder`. @throws std::runtime_error when the system allows no file system of its own
    TrialDisk(const std::string& folder, const Trial& trial);
    /// Leaves as much free room as the trial wants; does nothing when it wants none.
    void Fill() const;
    /// Makes room again.
    void Widen() const;

    /// Whether this system allows small file systems.
    static bool IsPossible();

  private:
    std::string folder;
    int freePages;
};
