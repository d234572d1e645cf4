#pragma once

#include <string>

/// Stops the fuzzer, which then stores the current input as a finding, and prints which promise was broken.
[[noreturn]] void Broken(const std::string& promise);

/// Stops the fuzzer unless the promise holds.
inline void Check(bool holds, const char* promise) {
    if (!holds)
        Broken(promise);
}
