#pragma once

#include "tools/commandline/Command.h"

/// "paths import": paths from other programs into a track.
class PathsImportCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};
