#pragma once

#include <memory_resource>

/// Where an object of the platform takes its memory from. The handle is borrowed: what it stands for outlives
/// every object made with it.
using bAlloc = std::pmr::memory_resource*;

/// The allocator of the whole program: the heap. Never null; usable from every thread.
bAlloc bAlloc_Application();
