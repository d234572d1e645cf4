#include "basalt/MemoryStream.h"

#include <cstdlib>

MemoryStream::MemoryStream() : file(open_memstream(&text, &size)) {
}

MemoryStream::~MemoryStream() {
    if (file != nullptr)
        std::fclose(file);
    std::free(text); // NOLINT(cppcoreguidelines-no-malloc): open_memstream's buffer
}

std::string MemoryStream::Text() const {
    if (file == nullptr)
        return {};
    std::fflush(file);
    return {text, size};
}
