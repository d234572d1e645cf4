#pragma once

#include "FileCalls.h"
#include "OperatorFiles.h"

#include <string>
#include <string_view>

/// One run of a scenario with one fault.
struct Trial {
    Fault fault = Fault::None;
    long at = 0;        ///< the call that fails, from 1
    int freePages = -1; ///< instead of a fault: a small file system with this much free space; -1 for none
};

/// A scenario as the harness runs it. Every function runs in a new process with an empty working folder.
class TrialScenario {
  public:
    /// @param reads inject faults into the calls that read, instead of those that write
    explicit TrialScenario(bool reads) : reads(reads) {}
    TrialScenario(const TrialScenario&) = delete;
    TrialScenario& operator=(const TrialScenario&) = delete;
    virtual ~TrialScenario() = default;

    [[nodiscard]] bool Reads() const { return reads; }
    /// Sets what is watched, before a run.
    virtual void Arrange(FileCallReport& report) const { report.reads = reads; }
    /// Runs the scenario with the fault, and then the same operation again without one.
    virtual Problems Run(const Trial& trial, FileCallReport& report) const = 0;
    /// Checks what a killed run has left, and then runs the scenario from a new start without a fault.
    virtual Problems RunAfterKill() const = 0;

  private:
    bool reads;
};

/// The fault as text.
std::string Describe(const Trial& trial, const FileCallReport& report);

/// Whether an operation may succeed although this call failed: files to be removed may remain until the next
/// time; renaming, changing permissions, opening a nameless file and copying within the kernel have
/// fallbacks, whose result is checked; a folder may exist already; a text track whose encoding cannot be
/// detected is read as text; a folder's list may be complete before its end is read, or may be that of a
/// dialog.
bool MayBeSurvived(const FileCallReport& report);
/// Whether the fault was injected into a call with this name.
bool FallsOn(const FileCallReport& report, std::string_view name);

/// What an operation has reported.
struct Answer {
    bool succeeded = false;
    bool shown = false;    ///< a failure was shown everywhere where it must be shown
    bool lessDone = false; ///< the log reports that a side task failed, which stops no operation
};

/// Compares the report of an operation with the fault: a short write is not a failure; any other fault must
/// be reported, unless it may be survived.
void JudgeAnswer(Problems& problems, const FileCallReport& report, const Answer& answer);

/// The watched folder of a trial; a separate small file system when the trial needs one.
class TrialDisk {
  public:
    /// Creates `folder`. @throws std::runtime_error when it cannot mount a file system there
    TrialDisk(const std::string& folder, const Trial& trial);
    /// Reduces the free space to what the trial needs; does nothing for a trial without a small disk.
    void Fill() const;
    /// Makes the disk large again.
    void Enlarge() const;

    /// Whether this user may mount file systems.
    static bool IsPossible();

  private:
    std::string folder;
    int freePages;
};
