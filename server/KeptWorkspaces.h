#pragma once

#include <string>
#include <vector>

/// The contents that a workspace had before its last restores: folders beside it, named by the time when each
/// was replaced, ".NAME.ostra-kept-TIME". They are never served.
class KeptWorkspaces final {
  public:
    /// @param parent the folder that holds the workspace
    /// @param prefix the name of a kept folder up to TIME
    KeptWorkspaces(std::string parent, std::string prefix)
        : parent(std::move(parent)), prefix(std::move(prefix)) {}

    /// The times of those that there are, in UTC, the newest first.
    [[nodiscard]] std::vector<std::string> Times() const;
    /// The time for one more: now, and after all others.
    [[nodiscard]] std::string NewTime() const;
    /// Where the folder of a time is, or goes.
    [[nodiscard]] std::string PathOf(const std::string& time) const { return parent + "/" + prefix + time; }

  private:
    std::string parent;
    std::string prefix;
};
