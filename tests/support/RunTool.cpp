#include "RunTool.h"

#include <array>
#include <cstdio>
#include <stdexcept>

#include <sys/wait.h>

std::string RunTool(const std::string& command) {
    FILE* const pipe = popen((command + " 2>&1").c_str(), "r");
    if (pipe == nullptr)
        throw std::runtime_error("could not run " + command);
    std::string output;
    std::array<char, 4096> buffer{};
    for (std::size_t count = 0; (count = fread(buffer.data(), 1, buffer.size(), pipe)) > 0;)
        output.append(buffer.data(), count);
    const int result = pclose(pipe);
    if (result != 0)
        output += "exit " + std::to_string(WIFEXITED(result) ? WEXITSTATUS(result) : -1);
    return output;
}
