#pragma once

#include "wire/VeJson.h"

#include <QByteArray>

#include <vector>

namespace OstraSdk {

/// The value of a CBOR map or array whose byte strings are held apart: each stands empty in the frame and is
/// taken from `byteStrings` in their order. Throws Ve::Exception: bERROR_FORMAT, or bERROR_LIMIT for a value
/// that nests too deep.
VeJson FromCborFrame(const QByteArray& frame, std::vector<VeJson::Bytes>&& byteStrings);

} // namespace OstraSdk
