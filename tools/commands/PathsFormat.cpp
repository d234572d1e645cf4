#include "tools/commands/PathsFormat.h"

OptionText PathsFormatOption() {
    return {QStringLiteral("format"),
            QStringLiteral("FORMAT"),
            QStringLiteral("csv or json (by the file's name, else csv)"),
            {}};
}

PathsFormat PathsFormatFor(const Arguments& arguments, const std::string& file) {
    if (const auto format = arguments.Choice("format", {"csv", "json"}))
        return *format == "json" ? PathsFormat::Json : PathsFormat::Csv;
    return file.ends_with(".json") || file.ends_with(".geojson") ? PathsFormat::Json : PathsFormat::Csv;
}
