#pragma once

#include "tools/commandline/Command.h"

/// "paths export": the paths of a track for other programs.
class PathsExportCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};
