#include "log/Output2FILE.h"

std::FILE*& Output2FILE::Target() {
    static std::FILE* target = stderr;
    return target;
}

void Output2FILE::Write(const std::string& text) {
    std::FILE* const target = Target();
    if (target == nullptr)
        return;
    std::fprintf(target, "%s", text.c_str());
    std::fflush(target);
}
