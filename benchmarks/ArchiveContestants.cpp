#include "ArchiveContestants.h"

#include "basalt/bObject.h"
#include "link/FileUtils.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>

namespace {

constexpr std::size_t kSmall = 100'000;
constexpr std::size_t kLarge = 20'000'000;
constexpr int kFilesPerFolder = 100;

Figures Pack(const Arguments& arguments) {
    const MemoryWatch memory;
    TarCompress(arguments.at(0), arguments.at(1), bAlloc_Application());
    return {{"bytes", memory.PeakBytes()}, {"seconds", ProcessSeconds()}};
}

Figures Unpack(const Arguments& arguments) {
    const MemoryWatch memory;
    TarUncompress(arguments.at(0), arguments.at(1), bAlloc_Application());
    return {{"bytes", memory.PeakBytes()}, {"seconds", ProcessSeconds()}};
}

void WriteNoise(const std::string& path, std::size_t size, std::mt19937_64& random) {
    std::string bytes(size, '\0');
    for (std::size_t at = 0; at + sizeof(std::uint64_t) <= size; at += sizeof(std::uint64_t)) {
        const std::uint64_t word = random();
        std::memcpy(bytes.data() + at, &word, sizeof word);
    }
    if (!std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(size)))
        throw std::runtime_error("cannot write " + path);
}

Figures MakeTree(const Arguments& arguments) {
    const int small = NumberAt(arguments, 1);
    const int large = NumberAt(arguments, 2);
    std::mt19937_64 random(9);
    for (int i = 0; i < small; ++i) {
        const std::string folder = arguments.at(0) + "/part" + std::to_string(i / kFilesPerFolder);
        std::filesystem::create_directories(folder);
        WriteNoise(folder + "/track" + std::to_string(i) + ".trk", kSmall, random);
    }
    for (int i = 0; i < large; ++i)
        WriteNoise(arguments.at(0) + "/scan" + std::to_string(i) + ".bin", kLarge, random);
    return {{"bytes", static_cast<double>(small) * kSmall + static_cast<double>(large) * kLarge}};
}

} // namespace

Contestants ArchiveContestants() {
    return {{"pack", Pack}, {"unpack", Unpack}, {"make-tree", MakeTree}};
}
