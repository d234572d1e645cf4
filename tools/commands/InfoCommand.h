#pragma once

#include "tools/commandline/Command.h"

/// "info": what a track file holds.
class InfoCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};
