#pragma once

#include "wire/VeJson.h"

#include <string>
#include <string_view>

namespace OstraSdk {

/// The longest JSON text, or body without its byte strings, that is read: a bound on the memory of its
/// values.
constexpr std::size_t kMaxText = std::size_t{1024} * 1024;

/// Reads a JSON text (UTF-8) whose outermost value is an object or an array; an integer up to 2^53 is an
/// integer however it is written. Throws Ve::Exception: bERROR_FORMAT, also for a key that stands twice in an
/// object, or bERROR_LIMIT for a text that is too long or too deep.
VeJson FromJsonText(std::string_view text);

/// Writes an object or an array in the shortest form. Byte strings have no place in a text: they throw
/// Ve::Exception with status bERROR_PARAMETER.
std::string ToJsonText(const VeJson& json);

} // namespace OstraSdk
