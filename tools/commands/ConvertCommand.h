#pragma once

#include "tools/commandline/Command.h"

/// "convert": a text track as a binary one.
class ConvertCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};
