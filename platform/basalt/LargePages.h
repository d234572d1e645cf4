#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// Makes room for `size` bytes that are about to be filled. A large room is asked for in large pages: in
/// small ones, handing out hundreds of megabytes costs the system as much time as copying them. No memory is
/// used before its bytes are there.
/// @throws std::bad_alloc, std::length_error
void ReserveInLargePages(std::vector<std::uint8_t>& bytes, std::size_t size);
