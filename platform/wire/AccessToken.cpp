#include "wire/AccessToken.h"

#include "basalt/Exception.h"
#include "basalt/InputFile.h"
#include "basalt/bStatus.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::size_t kMaxToken = 1000;

bool IsTokenCharacter(char c) {
    constexpr std::string_view kOthers = "-._~+/=";
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           kOthers.find(c) != std::string_view::npos;
}

} // namespace

std::string ReadAccessToken(const std::string& path) {
    constexpr const char* kFunction = "ReadAccessToken";
    InputFile file(path.c_str());
    std::array<char, kMaxToken + 2> content{};
    std::size_t count = 0;
    if (!file.IsOpen() || !file.Read(content.data(), content.size(), &count))
        throw Ve::Exception(__LINE__, __FILE__, bERROR_FILE, kFunction,
                            "The token file %s cannot be read: %s.", path.c_str(),
                            file.Failure().message().c_str());
    std::string line(content.data(), count);
    line.resize(std::min(line.find_first_of("\r\n"), line.size()));
    if (line.empty() || line.size() > kMaxToken || !std::all_of(line.begin(), line.end(), IsTokenCharacter))
        throw Ve::Exception(__LINE__, __FILE__, bERROR_FORMAT, kFunction,
                            "The first line of the token file %s is no token.", path.c_str());
    return line;
}

std::string BearerOf(std::string_view token) {
    return "Bearer " + std::string(token);
}

bool IsBearerOf(std::string_view value, std::string_view token) {
    const std::string expected = BearerOf(token);
    // Every byte is compared, whichever is the first that differs.
    unsigned difference = value.size() == expected.size() ? 0 : 1;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const char given = value.empty() ? '\0' : value[i % value.size()];
        difference |= static_cast<unsigned>(static_cast<unsigned char>(given ^ expected[i]));
    }
    return difference == 0;
}
