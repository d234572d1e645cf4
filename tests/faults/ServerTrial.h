#pragma once

#include "Trial.h"

/// A restore, as the real server does it.
class ServerTrial final : public TrialRoad {
  public:
    /// @param preload the library that watches the server's calls
    explicit ServerTrial(std::string preload) : preload(std::move(preload)) {}

    Problems Run(const Trial& trial, FileCallReport& report) const override;
    Problems RunAfterKill() const override;

  private:
    std::string preload;
};
