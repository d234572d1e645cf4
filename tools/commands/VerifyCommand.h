#pragma once

#include "tools/commandline/Command.h"

/// "verify": whether backups are whole, and their tracks readable.
class VerifyCommand final : public Command {
  public:
    [[nodiscard]] CommandText Text() const override;
    ExitCode Run(const Arguments& arguments) const override;
};
