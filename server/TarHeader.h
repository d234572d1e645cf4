#pragma once

#include <cstdint>
#include <string>

/// The kinds of entries that an archive holds.
enum class TarKind { File, Folder };

/// The header blocks of one tar entry: a ustar header, after pax headers where the name or the size does not
/// fit. Made here, ahead of any data, since the length of an archive must be told before its first byte is
/// sent.
/// @param name relative, "/" between its parts, without a trailing one
/// @param modified seconds since 1970
std::string TarHeader(const std::string& name, TarKind kind, std::uint64_t size, std::uint64_t modified);

constexpr std::uint64_t kTarBlock = 512;

/// Zero bytes that follow `size` bytes of data.
constexpr std::uint64_t TarPadding(std::uint64_t size) {
    return (kTarBlock - size % kTarBlock) % kTarBlock;
}

/// Zero bytes that end an archive.
constexpr std::uint64_t kTarEnd = 2 * kTarBlock;
