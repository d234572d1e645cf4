#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

/// Lets this process have at least `wanted` descriptors, as far as the system allows.
/// @return how many it may have
std::size_t RaiseDescriptorLimit(std::size_t wanted);

/// Opens a file of the standard library whose writes all go to its end; programs started from this one do not
/// inherit it. @return null when it cannot be opened; errno has the reason
[[nodiscard]] std::FILE* OpenToAppend(const std::string& path);

/// Makes writing to a pipe that nobody reads any more a failure of the write, and no end of the process.
void IgnoreBrokenPipes();

/// Makes room for `size` bytes that are about to be filled. A large room is asked for in large pages: in
/// small ones, handing out hundreds of megabytes costs the system as much time as copying them. No memory is
/// used before its bytes are there.
/// @throws std::bad_alloc, std::length_error
void ReserveInLargePages(std::vector<std::uint8_t>& bytes, std::size_t size);

/// A moment by the user's clock; nothing for one that the calendar does not reach.
[[nodiscard]] std::optional<std::tm> LocalTime(std::time_t moment);

// What the C library reads at the start of a text in the C locale, whatever the process's locale is: leading
// blanks are skipped, and what follows the number is ignored.

/// As `strtod`; 0 for what is no number.
[[nodiscard]] double PlainDouble(const char* text);
/// As `strtoll` for decimals; the nearest number of 64 bits for those beyond.
[[nodiscard]] std::int64_t PlainInteger(const char* text);
