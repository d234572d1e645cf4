#pragma once

#include "tools/commandline/Command.h"

/// "diff": what is different in two tracks.
class DiffCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};
