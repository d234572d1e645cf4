#pragma once

#include "cinder/TarName.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

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
