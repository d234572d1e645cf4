#pragma once

#include "wire/VeJson.h"

#include <QByteArray>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace OstraSdk {

/// Reads a CBOR body while it arrives. Byte strings go straight into the vectors that the value will hold;
/// what is left, the frame, is small and is read when the body is whole. So a body takes its own size in
/// memory and no more, and a declared length takes none before its bytes arrive.
///
/// Maps with text keys, arrays, numbers, texts, byte strings, true, false and null are understood; lengths
/// are definite. Anything else, and a body that breaks a bound, throws Ve::Exception (bERROR_FORMAT or
/// bERROR_LIMIT), after which the reader is of no more use.
class CborReader {
  public:
    /// @param bodySize the size of the whole body where it is known: no length in it may reach beyond
    explicit CborReader(std::optional<std::uint64_t> bodySize) : bodySize(bodySize) {}

    /// Takes the next bytes of the body, however it is cut.
    void Take(const std::uint8_t* data, std::size_t size);

    /// The value, once every byte was taken; a body that is cut short throws.
    [[nodiscard]] VeJson Finish();

  private:
    void TakeHeadByte(std::uint8_t byte);
    std::size_t TakeText(const std::uint8_t* data, std::size_t size);
    std::size_t TakeBytes(const std::uint8_t* data, std::size_t size);
    void StartItem(std::uint8_t kind, std::uint64_t value);
    void AppendToFrame(const void* data, std::size_t size);
    void MakeRoom(std::size_t size);

    std::optional<std::uint64_t> bodySize;
    std::uint64_t position = 0;             ///< bytes of the body taken so far
    QByteArray frame;                       ///< the body with every byte string empty
    std::vector<std::uint8_t> head;         ///< of the item that is being read
    std::uint64_t textLeft = 0;             ///< bytes of the present text string still to come
    std::uint64_t bytesLeft = 0;            ///< bytes of the present byte string still to come
    std::vector<VeJson::Bytes> byteStrings; ///< in the order in which they stand in the body
};

} // namespace OstraSdk
