#include "wire/BodyReader.h"

#include "basalt/Exception.h"
#include "basalt/bStatus.h"
#include "wire/JsonText.h"
#include "wire/WireBody.h"

namespace OstraSdk {

namespace {

std::string TextOf(ByteSource& body, std::size_t maxSize) {
    std::string text;
    std::array<char, 4096> piece{};
    while (const std::size_t count = body.Read(piece.data(), piece.size())) {
        if (count > maxSize - text.size())
            throw Ve::Exception(__LINE__, __FILE__, bERROR_LIMIT, "ReadBody", "The text is too long.");
        text.append(piece.data(), count);
    }
    return text;
}

} // namespace

VeJson ReadBody(ByteSource& body, std::string_view contentType, const CborReader::Bounds& bounds,
                const ByteStringSink& takeBytes) {
    if (IsCborType(contentType))
        return CborReader(body, bounds).Read(takeBytes);
    const std::string text = TextOf(body, bounds.beside);
    return text.empty() ? VeJson() : FromJsonText(text);
}

} // namespace OstraSdk
