#include "LogCapture.h"

#include "log/Log.h"

#include <algorithm>
#include <stdexcept>

LogCapture::LogCapture() : file(std::tmpfile()), before(Output2FILE::Target()) {
    if (file == nullptr)
        throw std::runtime_error("no temporary file could be made");
    Output2FILE::Target() = file;
}

LogCapture::~LogCapture() {
    Output2FILE::Target() = before;
    std::fclose(file);
}

std::vector<std::string> LogCapture::Lines() {
    std::vector<std::string> lines = LinesWithPlaces();
    std::erase_if(lines, [](const std::string& line) { return line.rfind("INFO: Line ", 0) == 0; });
    return lines;
}

std::vector<std::string> LogCapture::LinesWithPlaces() {
    std::string text(static_cast<std::size_t>(std::ftell(file)), '\0');
    std::rewind(file);
    text.resize(std::fread(text.data(), 1, text.size(), file));
    std::rewind(file);

    std::vector<std::string> lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        const std::string line = text.substr(start, end - start);
        const std::size_t stampEnd = line.find(' ');
        lines.push_back(stampEnd == std::string::npos ? line : line.substr(stampEnd + 1));
        start = end + 1;
    }
    return lines;
}
