#pragma once

#include "Road.h"
#include "Trial.h"

/// A road through the real window.
class WindowTrial final : public TrialRoad {
  public:
    WindowTrial(std::unique_ptr<Road> road, bool reads) : TrialRoad(reads), road(std::move(road)) {}

    Problems Run(const Trial& trial, FileCallReport& report) const override;
    Problems RunAfterKill() const override;

  private:
    std::unique_ptr<Road> road;
};
