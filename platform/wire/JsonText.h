#pragma once

#include "wire/VeJson.h"

#include <string>
#include <string_view>

/// Why a JSON text from outside is refused before it is parsed.
enum class JsonFlaw {
    None,
    TooDeep,     ///< more brackets are open at once than is allowed
    RepeatedKey, ///< an object has two members of one name: readers differ in which of them counts
    ZeroInKey    ///< a key holds a zero byte, which JSON allows as an escape only
};

/// Looks at the brackets and the keys alone, and tells the first flaw of a text that is well-formed up to
/// there; whether it is well-formed a parser has to find out. The toolkit's parser must not be given a text
/// that repeats a key: it loses the memory of the value that is replaced, each time. Two keys are one to it
/// that are as long as each other and equal up to a zero byte.
/// @param text UTF-8
[[nodiscard]] JsonFlaw FindJsonFlaw(std::string_view text, std::size_t deepest);

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
