#pragma once

#include "wire/CborReader.h"

#include <string_view>

namespace OstraSdk {

/// Reads a body as its content type says: CBOR, or JSON text under any other type. An empty body is an empty
/// value.
/// @param bounds a JSON text has to keep within `beside`
/// @throws Ve::Exception as CborReader and FromJsonText do, and what reading the body throws
VeJson ReadBody(ByteSource& body, std::string_view contentType, const CborReader::Bounds& bounds,
                const ByteStringSink& takeBytes = KeepBytes);

} // namespace OstraSdk
