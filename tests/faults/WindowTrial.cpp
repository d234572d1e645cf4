#include "WindowTrial.h"

#include "LogCapture.h"
#include "log/Log.h"

#include <algorithm>
#include <filesystem>

#include <unistd.h>

namespace fs = std::filesystem;

namespace {

const std::string kFolder = "counts"; // contains all files of the operator

void Enter(const std::string& folder) {
    fs::create_directories(folder);
    fs::current_path(folder);
}

void Add(Problems& problems, const Problems& more, const std::string& when) {
    for (const std::string& problem : more)
        problems.push_back(when + problem);
}

bool HaveErrors(const std::vector<std::string>& lines) {
    return std::any_of(lines.begin(), lines.end(),
                       [](const std::string& line) { return line.rfind("ERROR", 0) == 0; });
}

/// Whether the log reports that a side task failed: a copy, or the list of unsent tracks, could not be
/// stored; heights under the pointer cannot be shown.
bool SayLessDone(const std::vector<std::string>& lines) {
    return std::any_of(lines.begin(), lines.end(), [](const std::string& line) {
        return line.rfind("INFO: No heights can be shown", 0) == 0 ||
               line.rfind("ERROR: Failed to keep ", 0) == 0 ||
               line.rfind("ERROR: Failed to store the list of unsent tracks ", 0) == 0 ||
               line.rfind("ERROR: Failed to remove old copies ", 0) == 0;
    });
}

} // namespace

Problems WindowTrial::Run(const Trial& trial, FileCallReport& report) const {
    const std::string root = fs::current_path() / kFolder;
    const TrialDisk disk(root, trial);
    Enter(root + "/work");
    WriteTree(scenario->Before());
    const std::unique_ptr<OstraServerProcess> server = scenario->Serve();
    if (!WatchFileCalls(root.c_str(), &report))
        return {"the calls cannot be watched"};
    LogCapture log;
    WindowOperator window;
    scenario->Prepare(window);
    window.ClearStatus();
    window.TakeErrors();
    static_cast<void>(log.Lines());

    disk.Fill();
    report.armed = true;
    scenario->Operate(window);
    report.armed = false;
    disk.Enlarge();

    Problems problems;
    const bool boxed = window.HasErrors();
    const bool succeeded = !boxed && window.Status() == scenario->Success();
    const std::vector<std::string> lines = log.Lines();
    JudgeAnswer(problems, report, {succeeded, boxed && HaveErrors(lines), SayLessDone(lines)});
    Add(problems, scenario->Check(succeeded), "");
    Add(problems, Scenario::CheckKept(), "");
    if (succeeded)
        Add(problems, scenario->CheckShown(window), "");

    window.TakeErrors();
    window.ClearStatus();
    scenario->Operate(window);
    window.Expect(scenario->Success());
    Add(problems, scenario->Check(true), "next time: ");
    if (!succeeded) // read a failed list again
        window.Choose("comboBox_operation", "Refresh");
    Add(problems, scenario->CheckShown(window), "next time: ");
    return problems;
}

Problems WindowTrial::RunAfterKill() const {
    Enter(kFolder + "/work");
    Problems problems;
    Add(problems, scenario->Check(false), "");
    Add(problems, Scenario::CheckKept(), "");
    const std::unique_ptr<OstraServerProcess> server = scenario->Serve();
    const LogCapture log;
    WindowOperator window;
    scenario->Prepare(window);
    window.ClearStatus();
    scenario->Operate(window);
    window.Expect(scenario->Success());
    Add(problems, scenario->Check(true), "next start: ");
    return problems;
}
