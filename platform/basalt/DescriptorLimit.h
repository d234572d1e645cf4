#pragma once

#include <cstddef>

/// Lets this process have at least `wanted` descriptors, as far as the system allows.
/// @return how many it may have
std::size_t RaiseDescriptorLimit(std::size_t wanted);
