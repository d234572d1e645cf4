#pragma once

#include "tools/commandline/Command.h"

#include <QStringList>

#include <memory>
#include <vector>

using Commands = std::vector<std::unique_ptr<Command>>;

/// Finds the command that the arguments name, and runs it or prints its help.
class CommandLine final {
  public:
    explicit CommandLine(Commands commands) : commands(std::move(commands)) {}

    /// @param arguments without the program's name
    /// @return the program's exit code; every failure is reported on standard error
    [[nodiscard]] int Run(const QStringList& arguments) const;

  private:
    [[nodiscard]] ExitCode RunNamed(const QStringList& arguments) const;

    Commands commands;
};
