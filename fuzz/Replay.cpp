// Runs a fuzzer's function on every file of its corpus, in a program that any compiler builds: the test suite
// replays all named inputs without a fuzzing engine.

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

/// The inputs of a folder by their names, read before the first run: a fuzzer changes the working directory.
std::vector<std::pair<std::string, std::string>> InputsOf(const fs::path& folder) {
    std::vector<std::pair<std::string, std::string>> inputs;
    for (const auto& entry : fs::directory_iterator(folder)) {
        std::ifstream file(entry.path(), std::ios::binary);
        inputs.emplace_back(
            entry.path().filename().string(),
            std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()));
    }
    std::sort(inputs.begin(), inputs.end());
    return inputs;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("Give the folder with the inputs.\n", stderr);
        return 2;
    }
    const auto inputs = InputsOf(argv[1]);
    if (inputs.empty()) {
        std::fprintf(stderr, "%s is empty.\n", argv[1]);
        return 1;
    }
    for (const auto& [name, input] : inputs) {
        std::printf("%s\n", name.c_str()); // the last one shown is the one that broke a promise
        std::fflush(stdout);
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.data()), input.size());
    }
    return 0;
}
