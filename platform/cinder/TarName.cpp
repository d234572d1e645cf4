#include "cinder/TarName.h"

#include <algorithm>

namespace {

bool IsLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

std::vector<std::string> Split(std::string_view name, std::string_view separators) {
    std::vector<std::string> parts;
    while (!name.empty()) {
        const std::size_t length = std::min(name.find_first_of(separators), name.size());
        const std::string_view part = name.substr(0, length);
        if (!part.empty() && part != ".")
            parts.emplace_back(part);
        name.remove_prefix(std::min(length + 1, name.size()));
    }
    return parts;
}

} // namespace

bool IsConfinedTarName(std::string_view name) {
    if (name.empty() || name.front() == '/' || name.front() == '\\')
        return false;
    if (name.size() >= 2 && IsLetter(name[0]) && name[1] == ':')
        return false;
    const std::vector<std::string> parts = Split(name, "/\\");
    return parts.size() <= kMaxTarDepth && std::find(parts.begin(), parts.end(), "..") == parts.end();
}

std::vector<std::string> TarNameParts(std::string_view name) {
    return Split(name, "/");
}

std::string PlainTarName(std::string_view name) {
    std::string plain;
    for (const std::string& part : TarNameParts(name))
        plain += (plain.empty() ? "" : "/") + part;
    return plain;
}

std::string PrintableTarName(std::string_view name) {
    std::string printable(name);
    std::replace_if(
        printable.begin(), printable.end(),
        [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7f; }, '?');
    return printable;
}
