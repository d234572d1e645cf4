#include "server/KeptWorkspaces.h"

#include "basalt/FolderReader.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <functional>

namespace {

std::string Now() {
    const std::time_t now = std::time(nullptr);
    std::array<char, 32> text{};
    return {text.data(), std::strftime(text.data(), text.size(), "%Y%m%dT%H%M%SZ", std::gmtime(&now))};
}

/// "TIME-002" for the second one with the same time.
std::string Numbered(const std::string& time, unsigned number) {
    constexpr std::size_t kDigits = 3;
    const std::string digits = std::to_string(number);
    return time + '-' + std::string(kDigits - std::min(kDigits, digits.size()), '0') + digits;
}

} // namespace

std::vector<std::string> KeptWorkspaces::Times() const {
    std::vector<std::string> times;
    FolderReader reader(parent.c_str());
    for (FolderEntry entry; reader.Next(&entry) == bOK;)
        if (entry.kind == FileKind::Folder && entry.name.starts_with(prefix))
            times.emplace_back(entry.name.substr(prefix.size()));
    std::sort(times.begin(), times.end(), std::greater<>());
    return times;
}

std::string KeptWorkspaces::NewTime() const {
    const std::vector<std::string> times = Times();
    std::string time = Now();
    // A clock that was set back must not make the newest look old.
    if (!times.empty() && times.front() >= time)
        time = times.front().substr(0, times.front().find('-'));
    std::string next = time;
    for (unsigned number = 2; !times.empty() && times.front() >= next; ++number)
        next = Numbered(time, number);
    return next;
}
