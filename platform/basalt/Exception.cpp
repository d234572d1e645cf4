#include "basalt/Exception.h"

#include <cstdarg>
#include <cstdio>
#include <vector>

namespace Ve {

namespace {

std::string Formatted(const char* format, va_list arguments) {
    va_list measured;
    va_copy(measured, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, measured);
    va_end(measured);
    if (length < 0)
        return format;
    std::vector<char> text(static_cast<std::size_t>(length) + 1);
    std::vsnprintf(text.data(), text.size(), format, arguments);
    return {text.data(), static_cast<std::size_t>(length)};
}

} // namespace

Exception::Exception(int status) : status(status) {
}

Exception::Exception(int line, const char* file, int status, const char* function, const char* format, ...)
    : status(status), line(line), file(file), function(function) {
    va_list arguments;
    va_start(arguments, format);
    message = Formatted(format, arguments);
    va_end(arguments);
}

Exception Exception::Because(const std::string& why) const {
    Exception explained = *this;
    explained.reason = why;
    return explained;
}

Exception Exception::Because(std::error_code why) const {
    Exception explained = why ? Because(why.message()) : *this;
    explained.cause = why;
    return explained;
}

} // namespace Ve
