#include "wire/WireBody.h"

#include "basalt/Exception.h"
#include "basalt/bStatus.h"
#include "wire/CborWriter.h"
#include "wire/JsonText.h"

#include <algorithm>

namespace OstraSdk {

namespace {

bool HoldsBytes(const VeJson& json) {
    if (const auto* const values = std::get_if<VeJson::Array>(&json.Content()))
        return std::any_of(values->begin(), values->end(), HoldsBytes);
    if (const auto* const members = std::get_if<VeJson::Object>(&json.Content()))
        return std::any_of(members->begin(), members->end(),
                           [](const auto& member) { return HoldsBytes(member.second); });
    return std::holds_alternative<VeJson::Binary>(json.Content());
}

std::string_view View(const std::string& text) {
    return text;
}

std::string_view View(const VeJson::Binary& bytes) {
    return {reinterpret_cast<const char*>(bytes->data()), bytes->size()};
}

char LowerCase(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool Names(std::string_view contentType, std::string_view wanted) {
    std::string_view type = contentType.substr(0, contentType.find(';'));
    while (!type.empty() && type.back() == ' ')
        type.remove_suffix(1);
    return std::equal(type.begin(), type.end(), wanted.begin(), wanted.end(),
                      [](char one, char other) { return LowerCase(one) == other; });
}

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

WireBody::WireBody(const VeJson& json) {
    if (HoldsBytes(json)) {
        contentType = kCborType;
        parts = CborWriter::PartsOf(json);
    } else if (!json.IsEmpty()) {
        contentType = kJsonType;
        parts.emplace_back(ToJsonText(json));
    }
    for (const std::string_view part : Parts())
        size += part.size();
}

std::vector<std::string_view> WireBody::Parts() const {
    std::vector<std::string_view> views;
    for (const Part& part : parts)
        views.push_back(std::visit([](const auto& held) { return View(held); }, part));
    return views;
}

bool IsCborType(std::string_view contentType) {
    return Names(contentType, kCborType);
}

bool IsJsonType(std::string_view contentType) {
    return Names(contentType, kJsonType);
}

VeJson ReadBody(ByteSource& body, std::string_view contentType, const CborReader::Bounds& bounds,
                const ByteStringSink& takeBytes) {
    if (IsCborType(contentType))
        return CborReader(body, bounds).Read(takeBytes);
    const std::string text = TextOf(body, bounds.beside);
    return text.empty() ? VeJson() : FromJsonText(text);
}

} // namespace OstraSdk
