#include "basalt/RandomName.h"

#include <random>

std::string RandomName(std::string_view prefix) {
    constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz0123456789";
    constexpr int kCount = 6;
    std::random_device random;
    std::string name(prefix);
    for (int i = 0; i < kCount; ++i)
        name += kLetters[random() % kLetters.size()];
    return name;
}
