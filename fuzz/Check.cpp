#include "Check.h"

#include <cstdio>
#include <cstdlib>

void Broken(const std::string& promise) {
    std::fprintf(stderr, "BROKEN PROMISE: %s\n", promise.c_str());
    std::abort();
}
