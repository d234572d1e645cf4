#pragma once

#include "Trial.h"

#include <map>
#include <string>
#include <vector>

#include <sys/types.h>

/// Runs the trials of one scenario, several at a time, each in its own process and folder.
class Harness {
  public:
    Harness(const TrialScenario& scenario, std::string folder, int jobs)
        : scenario(scenario), folder(std::move(folder)), jobs(jobs) {}

    /// Runs once without a fault. @return the number of calls; 0 when that run fails
    long CountCalls();
    /// Starts a trial, after waiting for a free job.
    void Start(const Trial& trial);
    /// Waits for the running trials.
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
