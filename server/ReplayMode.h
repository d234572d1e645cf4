#pragma once

#include <atomic>
#include <optional>

/// Whether the sensor plays its recording back. Any thread may read and set it.
class ReplayMode final {
  public:
    /// @param enabled the mode at start
    /// @param afterRestore what every restore sets the mode to; nothing to follow the restored archive
    ReplayMode(bool enabled, std::optional<bool> afterRestore);

    [[nodiscard]] bool Enabled() const { return enabled; }
    void Set(bool value) { enabled = value; }

    /// Takes over the mode that a restore brings.
    /// @param archived the mode noted in the archive; nothing when it notes none, which leaves the mode alone
    void Restored(std::optional<bool> archived);

  private:
    std::atomic<bool> enabled;
    std::optional<bool> afterRestore;
};
