#pragma once

#include "tools/commandline/Command.h"

/// "list": what is in a backup.
class ListCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};
