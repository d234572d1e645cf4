#pragma once

#include "Trial.h"

/// A restore by the real server.
class ServerTrial final : public TrialScenario {
  public:
    /// @param preload the library that watches the server's calls
    /// @param noExchange on a file system that cannot exchange two folders in one step
    ServerTrial(std::string preload, bool reads, bool noExchange)
        : TrialScenario(reads), preload(std::move(preload)), noExchange(noExchange) {}

    void Arrange(FileCallReport& report) const override;
    Problems Run(const Trial& trial, FileCallReport& report) const override;
    Problems RunAfterKill() const override;

  private:
    std::string preload;
    bool noExchange;
};
