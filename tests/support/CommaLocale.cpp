#include "CommaLocale.h"

#include <clocale>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace {

constexpr const char* kName = "de_DE.UTF-8";

} // namespace

CommaLocale::CommaLocale()
    : folder((std::filesystem::temp_directory_path() / "corvane-locale-XXXXXX").string()),
      before(std::setlocale(LC_ALL, nullptr)) {
    if (mkdtemp(folder.data()) == nullptr)
        throw std::runtime_error("no temporary folder could be made");
    const std::string command = "localedef -i de_DE -f UTF-8 '" + folder + "/" + kName + "'";
    if (std::system(command.c_str()) != 0) {
        std::filesystem::remove_all(folder);
        throw std::runtime_error("failed: " + command);
    }
    setenv("LOCPATH", folder.c_str(), 1);
    Enter();
}

CommaLocale::~CommaLocale() {
    std::setlocale(LC_ALL, before.c_str());
    unsetenv("LOCPATH");
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

void CommaLocale::Enter() const {
    if (std::setlocale(LC_ALL, kName) == nullptr || std::strcmp(std::localeconv()->decimal_point, ",") != 0)
        throw std::runtime_error("no locale with a decimal comma");
}

void CommaLocale::Leave() const {
    std::setlocale(LC_ALL, "C");
}
