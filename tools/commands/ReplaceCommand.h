#pragma once

#include "tools/commandline/Command.h"

/// "replace": another file into a backup's workspace.
class ReplaceCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};
