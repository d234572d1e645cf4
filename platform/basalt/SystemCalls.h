#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

/// Raises this process's limit of open descriptors to at least `wanted`, as far as the system allows.
/// @return the limit now
std::size_t RaiseDescriptorLimit(std::size_t wanted);

/// Opens a file for appending; programs started from this one do not inherit it. @return null when it cannot
/// be opened; errno has the reason
[[nodiscard]] std::FILE* OpenToAppend(const std::string& path);

/// Makes a write to a closed pipe fail instead of ending the process.
void IgnoreBrokenPipes();

/// Makes standard output and error write bytes unchanged, so that output is the same on every system.
void KeepBytesOfOutput();

/// Whether an output is a terminal; it then also interprets escape sequences, where it can.
[[nodiscard]] bool IsTerminal(std::FILE* output);

/// Reserves capacity for `size` bytes that are about to be filled. Large capacities use large pages: with
/// small ones, providing hundreds of megabytes takes the system as long as copying them. No memory is used
/// before its bytes are written.
/// @throws std::bad_alloc, std::length_error
void ReserveInLargePages(std::vector<std::uint8_t>& bytes, std::size_t size);

/// A time in the user's time zone; none for one outside the calendar's range.
[[nodiscard]] std::optional<std::tm> LocalTime(std::time_t moment);

// What the C library reads at the start of a string in the C locale, whatever the process's locale: leading
// blanks are skipped, and what follows the number is ignored.

/// As `strtod`; 0 for text that is not a number.
[[nodiscard]] double PlainDouble(const char* text);
/// As `strtoll` for decimals; saturating at 64 bits.
[[nodiscard]] std::int64_t PlainInteger(const char* text);
