#include "Harness.h"

#include "TemporaryFolder.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr unsigned kTimeOut = 120; // seconds for one run: a hang ends it

/// The process of one run; writes the problems to a file.
[[noreturn]] void Perform(const TrialScenario& scenario, const Trial& trial, const std::string& folder,
                          bool afterKill) {
    alarm(kTimeOut);
    fs::current_path(folder);
    Problems problems;
    FileCallReport* const report = MapReport("report");
    try {
        problems = afterKill ? scenario.RunAfterKill() : scenario.Run(trial, *report);
    } catch (const std::exception& exception) {
        problems.emplace_back(exception.what());
    }
    std::ofstream result(folder + "/result");
    for (const std::string& problem : problems)
        result << problem << '\n';
    result.close();
    // Exits without destructors: closing the window is not part of the trial.
    _exit(result.good() ? 0 : 1);
}

Problems Lines(const std::string& path) {
    Problems lines;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

} // namespace

long Harness::CountCalls() {
    counted = 0;
    Start({});
    Finish();
    return problematic == 0 ? counted : 0;
}

void Harness::Start(const Trial& trial) {
    while (static_cast<int>(processes.size()) >= jobs)
        AwaitOne();
    Running running{trial, folder + "/" + std::to_string(++started)};
    fs::create_directory(running.folder);
    FileCallReport* const report = MapReport((running.folder + "/report").c_str());
    scenario.Arrange(*report);
    report->fault = trial.fault;
    report->at = trial.at;
    munmap(report, sizeof(FileCallReport));
    StartProcess(running);
}

void Harness::Finish() {
    while (!processes.empty())
        AwaitOne();
}

void Harness::StartProcess(const Running& running) {
    std::fflush(stdout);
    const pid_t process = fork();
    if (process == 0)
        Perform(scenario, running.trial, running.folder, running.afterKill);
    processes[process] = running;
}

void Harness::AwaitOne() {
    int status = 0;
    const pid_t process = wait(&status);
    const auto found = processes.find(process);
    if (found == processes.end())
        return;
    const Running running = found->second;
    processes.erase(found);
    Ended(running, status);
}

void Harness::Ended(const Running& running, int status) {
    const bool kills = running.trial.fault == Fault::Kill || running.trial.fault == Fault::TornKill;
    if (status == 0) {
        Conclude(running, Lines(running.folder + "/result"));
    } else if (kills && !running.afterKill && WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) {
        Running next = running;
        next.afterKill = true;
        StartProcess(next);
    } else {
        const std::string end = WIFSIGNALED(status) ? "ended by signal " + std::to_string(WTERMSIG(status))
                                                    : "ended with " + std::to_string(WEXITSTATUS(status));
        Conclude(running, {end});
    }
}

void Harness::Conclude(const Running& running, const Problems& problems) {
    FileCallReport* const report = MapReport((running.folder + "/report").c_str());
    if (report->injected || running.trial.freePages >= 0)
        ++injected;
    if (!problems.empty()) {
        ++problematic;
        std::printf("  %s:\n", Describe(running.trial, *report).c_str());
        for (const std::string& problem : problems)
            std::printf("    %s\n", problem.c_str());
    }
    if (running.trial.at == 0 && running.trial.freePages < 0) {
        counted = report->count;
        for (long i = 0; i < std::min(counted, FileCallReport::kMaxCalls); ++i) {
            const FileCall& call = report->calls[static_cast<std::size_t>(i)];
            calls.push_back(std::string(call.name.data()) + " " + call.place.data());
        }
    }
    munmap(report, sizeof(FileCallReport));
    fs::remove_all(running.folder);
}
