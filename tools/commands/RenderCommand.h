#pragma once

#include "tools/commandline/Command.h"

/// "render": a picture of a track.
class RenderCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};
