#pragma once

#include "tools/commandline/CommandLine.h"

#include <QString>

/// What "corvane-track COMMAND --help" shows.
QString HelpOf(const CommandText& command);

/// What "corvane-track --help" shows: every command in a line, and the exit codes.
QString OverviewOf(const Commands& commands);

/// What "corvane-track completion" prints: the completion of commands and options for bash.
QString CompletionScriptFor(const Commands& commands);
