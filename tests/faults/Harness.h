#pragma once

#include "Trial.h"

#include <map>
#include <string>
#include <vector>

#include <sys/types.h>

/// Runs trials of one scenario, several at a time, each in a process and a folder of its own.
class Harness {
  public:
    Harness(const TrialScenario& scenario, std::string folder, int jobs)
        : scenario(scenario), folder(std::move(folder)), jobs(jobs) {}

    /// A run without a fault. @return how many calls it made; 0 when it did not even succeed
    long CountCalls();
    /// Starts a trial, and waits first when too many run.
    void Start(const Trial& trial);
    /// Waits for the trials that run.
    void Finish();

    [[nodiscard]] int Injected() const { return injected; }
    [[nodiscard]] int Problematic() const { return problematic; }
    /// The calls of the run without a fault, as text.
    [[nodiscard]] const std::vector<std::string>& Calls() const { return calls; }

  private:
    struct Running {
        Trial trial;
        std::string folder;
        bool afterKill = false;
    };

    void StartProcess(const Running& running);
    void AwaitOne();
    void Ended(const Running& running, int status);
    void Conclude(const Running& running, const Problems& problems);

    const TrialScenario& scenario;
    std::string folder;
    int jobs;
    int started = 0;
    int injected = 0;
    int problematic = 0;
    long counted = 0;
    std::vector<std::string> calls;
    std::map<pid_t, Running> processes;
};
