#pragma once

#include "tools/commandline/Command.h"

/// "check": every problem of track files, with its place.
class CheckCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};
