#pragma once

#include <string>
#include <vector>

/// The previous contents of a workspace, kept at each restore: sibling folders ".NAME.ostra-kept-TIME", where
/// TIME is when each was replaced. They are never served.
class KeptWorkspaces final {
  public:
    /// @param parent the folder that holds the workspace
    /// @param prefix the name of a kept folder up to TIME
    KeptWorkspaces(std::string parent, std::string prefix)
        : parent(std::move(parent)), prefix(std::move(prefix)) {}

    /// The times of the kept contents, in UTC, newest first.
    [[nodiscard]] std::vector<std::string> Times() const;
    /// The time under which to keep the next one: now, but always later than all others.
    [[nodiscard]] std::string NewTime() const;
    /// The path of the folder for a time, whether it exists or not.
    [[nodiscard]] std::string PathOf(const std::string& time) const { return parent + "/" + prefix + time; }

  private:
    std::string parent;
    std::string prefix;
};
