#include "tools/track/CapturedLog.h"

#include "log/Log.h"

#include <string_view>

CapturedLog::CapturedLog() : before(Output2FILE::Target()) {
    Output2FILE::Target() = stream.File();
}

CapturedLog::~CapturedLog() {
    Output2FILE::Target() = before;
}

std::string CapturedLog::FirstError() const {
    constexpr std::string_view kLevel = " ERROR: ";
    constexpr std::string_view kTagEnd = " (EXCEPTION) ";
    const std::string text = stream.Text();
    const std::string_view lines(text);
    const std::size_t level = lines.find(kLevel);
    if (level == std::string_view::npos)
        return {};
    std::string_view message = lines.substr(level + kLevel.size());
    message = message.substr(0, message.find('\n'));
    if (const std::size_t tagEnd = message.find(kTagEnd);
        message.starts_with('[') && tagEnd != std::string_view::npos)
        message = message.substr(tagEnd + kTagEnd.size());
    return std::string(message);
}
