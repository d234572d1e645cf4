#pragma once

#include "Trial.h"

/// Downloads a backup that the real server packs from its workspace while sending it; the faults are read
/// faults.
class ServerArchiveTrial final : public TrialScenario {
  public:
    /// @param preload the library that watches the server's calls
    /// @param plain use a client that checks only status and length, instead of the editor's, which asks for
    ///        digests
    ServerArchiveTrial(std::string preload, bool plain)
        : TrialScenario(true), preload(std::move(preload)), plain(plain) {}

    Problems Run(const Trial& trial, FileCallReport& report) const override;
    Problems RunAfterKill() const override;

  private:
    std::string preload;
    bool plain;
};
