#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// Deeper than this no entry may lie; a deep tree costs an open folder a level wherever it is worked on.
constexpr std::size_t kTarDeepest = 64;

/// Whether an entry of this name lies inside any folder it is unpacked into, on every system: it is not
/// empty, not absolute, starts with no drive, has no ".." and is not too deep, "\" counting as a separator
/// like "/". Control characters are allowed: a file system keeps them, and refusing one odd name would lock
/// its owner out of a whole backup.
bool IsNarrowTarName(std::string_view name);

/// The parts of a name between its slashes, empty ones and "." left out.
std::vector<std::string> TarNameParts(std::string_view name);

/// A name fit for a message on one line: control characters show as "?".
std::string PrintableTarName(std::string_view name);

/// What an archive, or a folder that is packed, has beside files and folders: links and special files.
struct LeftOut {
    static constexpr std::size_t kMaxNames = 100;

    std::int64_t count = 0;
    std::vector<std::string> names; ///< of the first ones, printable

    void Add(std::string_view name) {
        ++count;
        if (names.size() < kMaxNames)
            names.push_back(PrintableTarName(name));
    }
    void Add(const LeftOut& more) {
        for (const std::string& name : more.names)
            Add(name);
        count += more.count - static_cast<std::int64_t>(more.names.size());
    }
    bool operator==(const LeftOut&) const = default;
};
