#pragma once

#include "tools/commandline/Arguments.h"

#include <string>

/// How a list of paths is written.
enum class PathsFormat { Csv, Json };

/// The option that names it.
OptionText PathsFormatOption();

/// The format that is asked for; else that of the file's name: JSON for ".json" and ".geojson", else CSV.
PathsFormat PathsFormatFor(const Arguments& arguments, const std::string& file);
