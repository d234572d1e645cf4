#pragma once

#include "tools/commandline/Command.h"

/// "extract": files out of a backup's workspace.
class ExtractCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};
