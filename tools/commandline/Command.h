#pragma once

#include "tools/commandline/Arguments.h"
#include "tools/commandline/Failure.h"

#include <QString>

#include <functional>
#include <string>
#include <vector>

/// The description of a command, from which its help, its completion and the check of its arguments are made.
struct CommandText {
    QString name;      ///< "info", or "paths export"
    QString summary;   ///< one line, without a full stop
    QString arguments; ///< "TRACK..."
    int min = 1;       ///< words that are required
    int max = 1;       ///< words that are accepted; -1 for any number
    QString details;   ///< paragraphs for the help, in lines of at most 90 characters
    QString found;     ///< when the command ends with ExitCode::Found, for the help; empty for never
    std::vector<OptionText> options;
};

/// One command of the program.
class Command {
  public:
    Command() = default;
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;
    virtual ~Command() = default;

    [[nodiscard]] virtual CommandText Text() const = 0;

    /// Runs the command. Results go to standard output, or to the file that the arguments name.
    /// @return Done or Found
    /// @throws Failure
    virtual ExitCode Run(const Arguments& arguments) const = 0;
};

/// Runs `work` on each of several files. A file that cannot be read is reported on standard error, and the
/// loop continues with the next one.
/// @param work returns Done or Found
/// @return Unreadable when any file could not be read, else Found when `work` returned it for any, else Done
/// @throws Failure of another kind
ExitCode ForEachFile(const std::string& command, const std::vector<std::string>& files,
                     const std::function<ExitCode(const std::string& file)>& work);
