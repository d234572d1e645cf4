#include "TemporaryFolder.h"

#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

/// A new folder that only this user may enter.
std::string MakeFolder() {
    constexpr int kTries = 100;
    const fs::path place = fs::temp_directory_path();
    std::random_device random;
    for (int i = 0; i < kTries; ++i) {
        const fs::path path = place / Utf8Path("corvane bühne " + std::to_string(random()));
        std::error_code failure;
        if (!fs::create_directory(path, failure))
            continue;
        fs::permissions(path, fs::perms::owner_all, failure);
        const std::u8string text = path.generic_u8string();
        return {text.begin(), text.end()};
    }
    throw std::runtime_error("no temporary folder could be made");
}

} // namespace

fs::path Utf8Path(const std::string& path) {
    return std::u8string(path.begin(), path.end());
}

TemporaryFolder::TemporaryFolder() : folder(MakeFolder()), before(fs::current_path()) {
    fs::current_path(Utf8Path(folder));
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    fs::current_path(before, ignored);
    fs::remove_all(Utf8Path(folder), ignored);
}

std::string FileContent(const std::string& path) {
    std::ifstream file(Utf8Path(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void WriteFile(const std::string& path, const std::string& content) {
    std::ofstream file(Utf8Path(path), std::ios::binary | std::ios::trunc);
    file << content;
    if (!file.flush())
        throw std::runtime_error("could not write " + path);
}

std::string TestData(const std::string& name) {
    return std::string(CORVANE_TEST_DATA) + "/" + name;
}
