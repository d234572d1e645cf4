#pragma once

#include <string>

/// Stops the fuzzer with the input at hand kept as a finding, and says which promise was broken.
[[noreturn]] void Broken(const std::string& promise);

/// Stops the fuzzer unless the promise holds.
inline void Check(bool holds, const char* promise) {
    if (!holds)
        Broken(promise);
}
