#pragma once

#include "wire/VeJson.h"

#include <string>
#include <string_view>

/// Why a JSON text from outside is refused before it is parsed.
enum class JsonFlaw {
    None,
    TooDeep,     ///< more brackets are open than allowed
    RepeatedKey, ///< an object has two members of one name: readers differ in which of them counts
    ZeroInKey    ///< a key holds a zero byte, which JSON allows only as an escape
};

/// Checks only the brackets and the keys, and returns the first flaw of a text that is well-formed up to
/// there; whether it is well-formed is left to the parser. Qt's parser (5.15) must not be given a text that
/// repeats a key: it leaks the memory of each replaced value. It treats two keys as equal if they have the
/// same length and are equal up to a zero byte.
/// @param text UTF-8
[[nodiscard]] JsonFlaw FindJsonFlaw(std::string_view text, std::size_t maxDepth);

namespace OstraSdk {

/// The maximum size of a JSON text, or of a body without its byte strings: limits the memory of its values.
constexpr std::size_t kMaxText = std::size_t{1024} * 1024;

/// Reads a JSON text (UTF-8) whose outermost value is an object or an array; an integer up to 2^53 is an
/// integer however it is written. Throws Ve::Exception: bERROR_FORMAT, also for a repeated key in an object,
/// or bERROR_LIMIT for a text that is too long or too deep.
VeJson FromJsonText(std::string_view text);

/// Writes an object or an array in the shortest form. Byte strings cannot be written as text: they throw
/// Ve::Exception with status bERROR_PARAMETER.
std::string ToJsonText(const VeJson& json);

} // namespace OstraSdk
