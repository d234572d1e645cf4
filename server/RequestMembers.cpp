#include "server/RequestMembers.h"

#include "server/JsonObject.h"
#include "server/RequestError.h"

#include <algorithm>

#include <QJsonArray>

namespace {

constexpr unsigned kDeepest = 64;
constexpr const char* kAllWorkspaces = "allWorkspaces";

[[noreturn]] void Refuse(const std::string& text) {
    throw RequestError(400, text);
}

/// The type without its parameters, in lower case.
std::string BareType(const std::string& contentType) {
    std::string type = contentType.substr(0, contentType.find(';'));
    type.erase(std::remove(type.begin(), type.end(), ' '), type.end());
    std::transform(type.begin(), type.end(), type.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return type;
}

bool NamesAllWorkspaces(const QJsonValue& contents) {
    if (!contents.isArray())
        Refuse("\"contents\" is not a list.");
    return contents.toArray().contains(QLatin1String(kAllWorkspaces));
}

/// The whole body, which is small: only an archive in CBOR may be large.
std::string Content(RequestReader& body) {
    std::string content(static_cast<std::size_t>(body.MostBytes()), '\0');
    content.resize(body.Read(content.data(), content.size()));
    return content;
}

RequestMembers ReadJson(const std::string& text) {
    const auto object = ParseJsonObject(text);
    if (!object)
        Refuse("The body is no JSON object, repeats a key or nests too deep.");
    RequestMembers members;
    if (const auto contents = object->constFind(QLatin1String("contents")); contents != object->constEnd())
        members.allWorkspaces = NamesAllWorkspaces(*contents);
    if (const auto enabled = object->constFind(QLatin1String("enabled")); enabled != object->constEnd()) {
        if (!enabled->isBool())
            Refuse("\"enabled\" is neither true nor false.");
        members.enabled = enabled->toBool();
    }
    if (object->contains(QLatin1String("data")))
        Refuse("\"data\" is not a byte string.");
    return members;
}

/// Reads the map of a CBOR body.
class CborMembers final {
  public:
    CborMembers(RequestReader& body, const ByteStringSink& takeData) : cursor(body), takeData(takeData) {}

    RequestMembers Read() {
        if (cursor.AtEnd())
            return {};
        const CborCursor::Head map = cursor.Next();
        if (map.kind != CborCursor::Kind::Map)
            Refuse("The body is not a map.");
        // An endless count ends where the body does: Next throws there.
        for (std::uint64_t entry = 0; entry < map.argument; ++entry)
            ReadEntry();
        if (!cursor.AtEnd())
            Refuse("Bytes follow the body's map.");
        return members;
    }

  private:
    void ReadEntry() {
        constexpr std::size_t kLongestKey = 64;
        const CborCursor::Head keyHead = cursor.Next();
        if (keyHead.kind != CborCursor::Kind::Text)
            Refuse("A key of the body is not text.");
        const std::string key = cursor.Text(keyHead, kLongestKey);
        const CborCursor::Head value = cursor.Next();
        if (key == "contents")
            ReadContents(value);
        else if (key == "enabled")
            ReadEnabled(value);
        else if (key == "data")
            ReadData(value);
        else
            cursor.SkipValue(value, kDeepest - 1);
    }

    void ReadContents(const CborCursor::Head& value) {
        if (contentsSeen || value.kind != CborCursor::Kind::Array)
            Refuse("\"contents\" is not one list.");
        contentsSeen = true;
        for (std::uint64_t i = 0; i < value.argument; ++i) {
            const CborCursor::Head element = cursor.Next();
            if (element.kind == CborCursor::Kind::Text)
                members.allWorkspaces |=
                    cursor.Text(element, std::string(kAllWorkspaces).size()) == kAllWorkspaces;
            else
                cursor.SkipValue(element, kDeepest - 2);
        }
    }

    void ReadEnabled(const CborCursor::Head& value) {
        constexpr unsigned kFalse = 20;
        constexpr unsigned kTrue = 21;
        const bool isBool =
            value.kind == CborCursor::Kind::Simple && (value.detail == kFalse || value.detail == kTrue);
        if (members.enabled || !isBool)
            Refuse("\"enabled\" is neither true nor false.");
        members.enabled = value.detail == kTrue;
    }

    void ReadData(const CborCursor::Head& value) {
        if (members.data || value.kind != CborCursor::Kind::Bytes)
            Refuse("\"data\" is not one byte string.");
        members.data = true;
        const std::uint64_t end = cursor.Offset() + value.argument;
        takeData(cursor, value.argument);
        cursor.SkipTo(end);
    }

    CborCursor cursor;
    const ByteStringSink& takeData;
    RequestMembers members;
    bool contentsSeen = false;
};

} // namespace

bool RequestMembers::IsCbor(const std::string& contentType) {
    return BareType(contentType) == "application/cbor";
}

RequestMembers RequestMembers::Read(RequestReader& body, const ByteStringSink& takeData) {
    if (IsCbor(body.ContentType()))
        return CborMembers(body, takeData).Read();
    const std::string text = Content(body);
    if (text.empty())
        return {};
    const std::string type = BareType(body.ContentType());
    if (!type.empty() && type != "application/json")
        Refuse("The body is neither JSON nor CBOR.");
    return ReadJson(text);
}
