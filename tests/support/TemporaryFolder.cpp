#include "TemporaryFolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

TemporaryFolder::TemporaryFolder()
    : folder((std::filesystem::temp_directory_path() / "corvane bühne XXXXXX").string()),
      before(std::filesystem::current_path().string()) {
    if (mkdtemp(folder.data()) == nullptr)
        throw std::runtime_error("no temporary folder could be made");
    std::filesystem::current_path(folder);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::current_path(before, ignored);
    std::filesystem::remove_all(folder, ignored);
}

std::string FileContent(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void WriteFile(const std::string& path, const std::string& content) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << content;
    if (!file.flush())
        throw std::runtime_error("could not write " + path);
}

std::string TestData(const std::string& name) {
    return std::string(CORVANE_TEST_DATA) + "/" + name;
}
