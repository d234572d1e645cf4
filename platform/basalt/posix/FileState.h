#pragma once

#include "basalt/FileFacts.h"

#include <sys/stat.h>

/// The system's answer about a file or a folder.
FileFacts FactsOf(const struct stat& state);

/// The kind that the type bits of a mode name.
FileKind KindOf(mode_t mode);
