#pragma once

#include "tools/commandline/CommandLine.h"

#include <QString>

/// The completion of the commands and their options for bash.
QString CompletionScriptFor(const Commands& commands);
