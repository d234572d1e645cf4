#pragma once

#include "TarBlocks.h"
#include "TemporaryFolder.h"
#include "cinder/bTar.h"

#include <gmock/gmock.h>

#include <array>
#include <functional>
#include <string>
#include <vector>

bOwned<bFile> Open(const char* path, int mode);
bOwned<bTar> OpenTar(const bOwned<bFile>& file, int mode);

/// An archive read entry by entry from a file "read.tar", and the fields of its last entry.
struct ArchiveReader {
    explicit ArchiveReader(const std::string& archive);
    bStatus Next();

    bOwned<bFile> file;
    bOwned<bTar> tar;
    std::array<char, bTar_NAME_SIZE> name{};
    int kind = 0;
    std::int64_t size = 0;
    std::string_view block;
};

/// A line for each entry of an archive, its data after "=", and the status that ends it.
std::vector<std::string> Read(const std::string& archive);

inline const std::string kRegularEnd = std::to_string(bERROR_END);
inline const std::string kDamaged = std::to_string(bERROR_FORMAT);

/// Writes an archive with `fill` and returns its bytes; the status of its end must be `expected`.
std::string Written(const std::function<void(bTar*)>& fill, bStatus expected = bOK);

/// Writes an entry with this content.
bStatus Add(bTar* tar, const std::string& name, const std::string& content);
