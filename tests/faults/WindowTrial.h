#pragma once

#include "Scenario.h"
#include "Trial.h"

/// A scenario in the real window.
class WindowTrial final : public TrialScenario {
  public:
    WindowTrial(std::unique_ptr<Scenario> scenario, bool reads)
        : TrialScenario(reads), scenario(std::move(scenario)) {}

    Problems Run(const Trial& trial, FileCallReport& report) const override;
    Problems RunAfterKill() const override;

  private:
    std::unique_ptr<Scenario> scenario;
};
