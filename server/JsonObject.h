#pragma once

#include <QJsonObject>

#include <optional>
#include <string_view>

/// A JSON text from outside as the object that it is; nothing when it is none, nests deeper than 64 levels or
/// has a key twice in an object.
[[nodiscard]] std::optional<QJsonObject> ParseJsonObject(std::string_view text);
