#include "ostrasdk/ReplyBody.h"

#include "basalt/Exception.h"
#include "basalt/bStatus.h"
#include "wire/JsonText.h"
#include "wire/WireBody.h"

namespace OstraSdk {

void ReplyBody::Start(std::string_view contentType, std::optional<std::uint64_t> size) {
    if (IsCborType(contentType))
        cbor.emplace(size);
}

void ReplyBody::Take(const void* data, std::size_t size) {
    empty = empty && size == 0;
    checksum.Take(data, size);
    if (cbor) {
        cbor->Take(static_cast<const std::uint8_t*>(data), size);
        return;
    }
    if (size > kLongestText - text.size())
        throw Ve::Exception(__LINE__, __FILE__, bERROR_LIMIT, "ReplyBody::Take", "The text is too long.");
    text.append(static_cast<const char*>(data), size);
}

VeJson ReplyBody::Finish() {
    if (empty)
        return {};
    return cbor ? cbor->Finish() : FromJsonText(text);
}

} // namespace OstraSdk
