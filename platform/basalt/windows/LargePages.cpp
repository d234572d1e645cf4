#include "basalt/SystemCalls.h"

/// Large pages need a right here that operators do not have.
void ReserveInLargePages(std::vector<std::uint8_t>& bytes, std::size_t size) {
    bytes.reserve(size);
}
