#pragma once

#include "tools/commandline/Command.h"

/// "profile": the heights along a path.
class ProfileCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};
