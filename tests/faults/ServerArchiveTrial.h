#pragma once

#include "Trial.h"

/// A backup that the real server packs from its workspace while it sends it; what fails is reading.
class ServerArchiveTrial final : public TrialScenario {
  public:
    /// @param preload the library that watches the server's calls
    /// @param plain fetched by a client that knows of a reply's length and status only, not by the editor's,
    ///        which asks for digests
    ServerArchiveTrial(std::string preload, bool plain)
        : TrialScenario(true), preload(std::move(preload)), plain(plain) {}

    Problems Run(const Trial& trial, FileCallReport& report) const override;
    Problems RunAfterKill() const override;

  private:
    std::string preload;
    bool plain;
};
