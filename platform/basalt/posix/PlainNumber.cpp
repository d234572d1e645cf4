#include "basalt/PlainNumber.h"

#include <clocale>
#include <cstdlib>

namespace {

constexpr int kDecimal = 10;

locale_t PlainLocale() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
}

} // namespace

double PlainDouble(const char* text) {
    return strtod_l(text, nullptr, PlainLocale());
}

std::int64_t PlainInteger(const char* text) {
    return strtoll_l(text, nullptr, kDecimal, PlainLocale());
}
