#include "server/handlers/Handler.h"

#include "basalt/Exception.h"
#include "server/http/HttpError.h"

#include <algorithm>

using OstraSdk::VeJson;

std::uint64_t Handler::BodyLimit(const Request&) const {
    return std::uint64_t{64} * 1024;
}

void RequireAllWorkspaces(const VeJson& body) {
    const auto* const contents =
        body.Has("contents") ? std::get_if<VeJson::Array>(&body.At("contents").Content()) : nullptr;
    if (contents == nullptr)
        throw HttpError(400, "\"contents\" is not a list.");
    const bool named = std::any_of(contents->begin(), contents->end(), [](const VeJson& each) {
        const auto* const text = std::get_if<std::string>(&each.Content());
        return text != nullptr && *text == "allWorkspaces";
    });
    if (!named)
        throw HttpError(400, "\"contents\" does not name \"allWorkspaces\".");
    if (body.Has("data") && !std::holds_alternative<VeJson::Binary>(body.At("data").Content()))
        throw HttpError(400, "\"data\" is not a byte string.");
}
