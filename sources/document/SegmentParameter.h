#pragma once

/// The four whole-number parameters that every point of a path carries for the segment it starts.
enum class SegmentParameter { Method, Length, Width, Space };
