#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The most parts of an entry's name: working on a tree needs an open folder for each level.
constexpr std::size_t kMaxTarDepth = 64;

/// Whether an entry of this name stays inside the folder it is unpacked into, on every system: it is not
/// empty, not absolute, starts with no drive, has no ".." and is not too deep, "\" counting as a separator
/// like "/". Control characters are allowed: a file system keeps them, and refusing one odd name would make a
/// complete backup unusable for its owner.
bool IsConfinedTarName(std::string_view name);

/// The parts of a name between its slashes, without empty ones and ".".
std::vector<std::string> TarNameParts(std::string_view name);

/// The name by which entries are compared: its parts with a single slash between them.
std::string PlainTarName(std::string_view name);

/// A name fit for a message on one line: control characters become "?".
std::string PrintableTarName(std::string_view name);

/// What an archive, or a folder that is packed, has besides files and folders: links and special files.
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
