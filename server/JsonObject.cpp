#include "server/JsonObject.h"

#include "wire/JsonFlaw.h"

#include <QJsonDocument>

std::optional<QJsonObject> ParseJsonObject(std::string_view text) {
    constexpr std::size_t kDeepest = 64;
    if (FindJsonFlaw(text, kDeepest) != JsonFlaw::None)
        return std::nullopt;
    const auto document =
        QJsonDocument::fromJson(QByteArray::fromRawData(text.data(), static_cast<int>(text.size())));
    if (!document.isObject())
        return std::nullopt;
    return document.object();
}
