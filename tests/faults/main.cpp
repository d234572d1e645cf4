#include "AllocationTrials.h"
#include "Harness.h"
#include "OstraServerProcess.h"
#include "Scenario.h"
#include "ServerArchiveTrial.h"
#include "ServerTrial.h"
#include "TemporaryFolder.h"
#include "WindowTrial.h"

#include <QApplication>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>

#include <unistd.h>

// faults_driver [--short] [--calls] [SCENARIO...] Runs each scenario once to count the calls that change (or
// read) files, then once for every call and fault. Exit code 0 when no run had a problem.
namespace {

constexpr int kMaxFreePages = 16; // 64 KiB
constexpr int kJobs = 4;

struct Options {
    bool brief = false;     ///< two faults and a kill for each call, every third size of disk
    bool listCalls = false; ///< print the calls of the scenario
    std::vector<std::string> scenarios;
};

struct Sum {
    long calls = 0;
    int injected = 0;
    int problematic = 0;
};

Options ParseOptions(int count, char** words) {
    Options options;
    for (int i = 1; i < count; ++i) {
        const std::string word = words[i];
        if (word == "--short")
            options.brief = true;
        else if (word == "--calls")
            options.listCalls = true;
        else
            options.scenarios.push_back(word);
    }
    return options;
}

/// The faults for one call. The short form takes the kill and two of the other faults in turn; for a call
/// that reads, one of its two faults.
std::vector<Fault> FaultsAt(long call, const Options& options, bool reads) {
    std::vector<Fault> faults{Fault::NoSpace, Fault::Quota,     Fault::InputOutput, Fault::DiskFull,
                              Fault::Short,   Fault::ShortFull, Fault::TornKill};
    if (reads)
        faults = {Fault::InputOutput, Fault::DiskDead};
    if (options.brief) {
        const long taken = reads ? 1 : 2;
        std::rotate(faults.begin(), faults.begin() + call * taken % static_cast<long>(faults.size()),
                    faults.end());
        faults.resize(static_cast<std::size_t>(taken));
    }
    if (!reads)
        faults.push_back(Fault::Kill);
    return faults;
}

bool IsOfWritesOnly(Fault fault) {
    return fault == Fault::Short || fault == Fault::ShortFull || fault == Fault::TornKill;
}

/// Whether a recorded call is a write.
bool IsWrite(const std::string& call) {
    return call.rfind("write", 0) == 0 || call.rfind("pwrite", 0) == 0;
}

/// Whether the folder was synced after the last renaming, which makes the new name durable.
bool SyncsAfterRenaming(const std::vector<std::string>& calls) {
    const auto last = std::find_if(calls.rbegin(), calls.rend(),
                                   [](const std::string& call) { return call.starts_with("rename"); });
    return last != calls.rend() && std::any_of(calls.rbegin(), last, [](const std::string& call) {
               return call.starts_with("fsync ");
           });
}

Sum RunScenario(const std::string& name, const TrialScenario& scenario, const Options& options,
                const std::string& folder, bool smallDisks) {
    const std::string place = folder + "/" + name;
    std::filesystem::create_directory(place);
    Harness harness(scenario, place, kJobs);
    const long calls = harness.CountCalls();
    for (long call = 1; call <= calls; ++call)
        for (const Fault fault : FaultsAt(call, options, scenario.Reads()))
            if (!IsOfWritesOnly(fault) || IsWrite(harness.Calls()[static_cast<std::size_t>(call) - 1]))
                harness.Start({fault, call});
    for (int pages = 0; smallDisks && !scenario.Reads() && calls > 0 && pages <= kMaxFreePages;
         pages += options.brief ? 3 : 1)
        harness.Start({Fault::None, 0, pages});
    harness.Finish();
    const bool synced = !name.starts_with("save-") || SyncsAfterRenaming(harness.Calls());
    if (!synced)
        std::puts("  the folder is not synced after the renaming");
    std::printf("%-22s %4ld calls, %4d faults, %d problems\n", name.c_str(), calls, harness.Injected(),
                harness.Problematic());
    if (options.listCalls)
        for (const std::string& call : harness.Calls())
            std::printf("    %s\n", call.c_str());
    return {calls, harness.Injected(), harness.Problematic() + (calls == 0 ? 1 : 0) + (synced ? 0 : 1)};
}

using NamedTrials = std::vector<std::pair<std::string, std::unique_ptr<TrialScenario>>>;

void AddWindowScenarios(NamedTrials& trials, NamedScenarios&& scenarios, bool reads) {
    for (auto& [name, scenario] : scenarios)
        trials.emplace_back((reads ? "reads-" : "") + name,
                            std::make_unique<WindowTrial>(std::move(scenario), reads));
}

NamedTrials AllScenarios() {
    NamedTrials scenarios;
    const std::string preload = CORVANE_FAULTS_PRELOAD;
    for (const bool reads : {false, true}) {
        AddWindowScenarios(scenarios, TrackScenarios(), reads);
        AddWindowScenarios(scenarios, BackupScenarios(), reads);
        AddWindowScenarios(scenarios, KeepingScenarios(), reads);
        scenarios.emplace_back(reads ? "reads-server-restore" : "server-restore",
                               std::make_unique<ServerTrial>(preload, reads, false));
    }
    AddWindowScenarios(scenarios, LoadScenarios(), true);
    AddWindowScenarios(scenarios, UploadScenarios(), true);
    for (const bool plain : {false, true})
        scenarios.emplace_back(plain ? "reads-server-archive-plain" : "reads-server-archive",
                               std::make_unique<ServerArchiveTrial>(preload, plain));
    scenarios.emplace_back("server-steps", std::make_unique<ServerTrial>(preload, false, true));
    return scenarios;
}

bool IsWanted(const Options& options, const std::string& name) {
    const auto& wanted = options.scenarios;
    return wanted.empty() || std::find(wanted.begin(), wanted.end(), name) != wanted.end();
}

Sum RunMemoryScenarios(const Options& options, const std::string& folder) {
    constexpr long kBriefStep = 7;
    Sum sum;
    for (const std::string& name : AllocationScenarios()) {
        if (!IsWanted(options, name))
            continue;
        std::filesystem::create_directory(folder + "/" + name);
        const auto result = RunAllocations(name, folder + "/" + name, options.brief ? kBriefStep : 1);
        std::printf("%-22s             %4ld faults, %d problems", name.c_str(), result.failed,
                    result.problems);
        std::puts(result.exits == 0 ? "" : (", " + std::to_string(result.exits) + " exits").c_str());
        sum.injected += static_cast<int>(result.failed);
        sum.problematic += result.problems;
    }
    return sum;
}

/// Runs the selected scenarios. @return their totals
Sum RunScenarios(const Options& options, const std::string& folder) {
    const bool smallDisks = TrialDisk::IsPossible();
    if (!smallDisks)
        std::printf("This user may not mount file systems: the full disks are skipped.\n");
    Sum sum = RunMemoryScenarios(options, folder);
    for (const auto& [name, scenario] : AllScenarios()) {
        if (!IsWanted(options, name))
            continue;
        const Sum one = RunScenario(name, *scenario, options, folder, smallDisks);
        sum.calls += one.calls;
        sum.injected += one.injected;
        sum.problematic += one.problematic;
    }
    return sum;
}

/// Trials fork, and locks held by another thread would never be released in the child.
bool IsOneThread() {
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return std::distance(begin(tasks), end(tasks)) == 1;
}

} // namespace

int main(int count, char** words) {
    const Options options = ParseOptions(count, words);
    const TemporaryFolder folder;
    setenv("XDG_CONFIG_HOME", folder.Path("config").c_str(), 1);
    setenv("XDG_RUNTIME_DIR", folder.Path("").c_str(), 1);
    setenv("CORVANE_KEPT", "../kept", 1); // of each run alone, beside its working folder
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    setenv("QT_LOGGING_RULES", "qt.qpa.*=false;*.debug=false;*.warning=false", 1);
    FileTree served;
    for (const auto& [name, content] : ServedTracks())
        served["served/vdk/ContourPath/" + name] = content;
    WriteTree(served);
    const OstraServerProcess server(folder.Path("served"));
    setenv("OSTRA_DISCOVERY", server.DiscoveryAddress().c_str(), 1);
    const QApplication application(count, words);
    if (!IsOneThread()) {
        std::fputs("more than one thread before the first trial\n", stderr);
        return 2;
    }
    const Sum sum = RunScenarios(options, folder.Path(""));
    std::printf("%ld calls, %d faults injected, %d runs with problems\n", sum.calls, sum.injected,
                sum.problematic);
    return sum.problematic == 0 && sum.injected > 0 ? 0 : 1;
}
