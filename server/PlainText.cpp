#include "server/PlainText.h"

#include <algorithm>

std::string PlainText(std::string_view text) {
    constexpr std::size_t kLongest = 200;
    std::string plain(text.substr(0, kLongest));
    std::replace_if(
        plain.begin(), plain.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return plain;
}
