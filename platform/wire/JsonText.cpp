#include "wire/JsonText.h"

#include "basalt/Exception.h"
#include "basalt/bStatus.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <charconv>
#include <cmath>
#include <set>
#include <string>
#include <vector>

namespace {

/// A key with its escapes resolved, in UTF-16, which is what escapes denote; each function removes what it
/// reads from the front of the text.
class KeyDecoder {
  public:
    explicit KeyDecoder(std::string_view written) : written(written) {}

    std::u16string Decoded() {
        std::u16string key;
        while (!written.empty()) {
            if (written.front() == '\\')
                key += TakeEscape();
            else
                Append(key, TakeCharacter());
        }
        return key;
    }

  private:
    unsigned TakeByte() {
        const auto byte = static_cast<unsigned char>(written.front());
        written.remove_prefix(1);
        return byte;
    }

    char16_t TakeEscape() {
        TakeByte();
        switch (const unsigned letter = written.empty() ? '\\' : TakeByte()) {
        case 'b':
            return u'\b';
        case 'f':
            return u'\f';
        case 'n':
            return u'\n';
        case 'r':
            return u'\r';
        case 't':
            return u'\t';
        case 'u':
            return TakeHexadecimal();
        default:
            return static_cast<char16_t>(letter);
        }
    }

    char16_t TakeHexadecimal() {
        constexpr std::size_t kDigits = 4;
        constexpr int kBase = 16;
        const std::string_view digits = written.substr(0, kDigits);
        std::uint16_t unit = 0;
        std::from_chars(digits.data(), digits.data() + digits.size(), unit, kBase);
        written.remove_prefix(digits.size());
        return unit;
    }

    char32_t TakeCharacter() {
        constexpr unsigned kLeadOfTwo = 0xC0;
        constexpr unsigned kLeadOfThree = 0xE0;
        constexpr unsigned kLeadOfFour = 0xF0;
        constexpr unsigned kBitsOfAByte = 6;
        constexpr unsigned kPayload = 0x3F;
        const unsigned lead = TakeByte();
        if (lead < kLeadOfTwo)
            return lead;
        const unsigned following = lead >= kLeadOfFour ? 3 : lead >= kLeadOfThree ? 2 : 1;
        char32_t character = lead & (kPayload >> following);
        for (unsigned i = 0; i < following && !written.empty(); ++i)
            character = character << kBitsOfAByte | (TakeByte() & kPayload);
        return character;
    }

    static void Append(std::u16string& key, char32_t character) {
        constexpr char32_t kFirstOfTwoUnits = 0x10000;
        constexpr char32_t kHighSurrogate = 0xD800;
        constexpr char32_t kLowSurrogate = 0xDC00;
        constexpr unsigned kBitsOfAUnit = 10;
        constexpr char32_t kPayload = 0x3FF;
        if (character < kFirstOfTwoUnits) {
            key += static_cast<char16_t>(character);
            return;
        }
        const char32_t rest = character - kFirstOfTwoUnits;
        key += static_cast<char16_t>(kHighSurrogate | (rest >> kBitsOfAUnit & kPayload));
        key += static_cast<char16_t>(kLowSurrogate | (rest & kPayload));
    }

    std::string_view written;
};

class FlawFinder {
  public:
    FlawFinder(std::string_view text, std::size_t maxDepth) : text(text), maxDepth(maxDepth) {}

    JsonFlaw Find() {
        for (at = 0; at < text.size(); ++at) {
            if (const JsonFlaw flaw = Look(); flaw != JsonFlaw::None)
                return flaw;
        }
        return JsonFlaw::None;
    }

  private:
    JsonFlaw Look() {
        switch (text[at]) {
        case '"':
            PassString();
            return JsonFlaw::None;
        case '{':
        case '[':
            keysOfOpen.emplace_back();
            return keysOfOpen.size() > maxDepth ? JsonFlaw::TooDeep : JsonFlaw::None;
        case '}':
        case ']':
            if (!keysOfOpen.empty())
                keysOfOpen.pop_back();
            return JsonFlaw::None;
        case ':':
            return LookAtKey();
        default:
            return JsonFlaw::None;
        }
    }

    /// Goes to the string's closing quotation mark, or to the end of the text without one.
    void PassString() {
        const std::size_t first = ++at;
        while (at < text.size() && text[at] != '"')
            at += text[at] == '\\' ? 2 : 1;
        lastString = text.substr(first, at - first);
    }

    /// A string before a colon is a key.
    JsonFlaw LookAtKey() {
        if (lastString.find('\0') != std::string_view::npos)
            return JsonFlaw::ZeroInKey;
        const bool isNew =
            keysOfOpen.empty() || keysOfOpen.back().insert(KeyDecoder(lastString).Decoded()).second;
        return isNew ? JsonFlaw::None : JsonFlaw::RepeatedKey;
    }

    std::string_view text;
    std::size_t maxDepth;
    std::size_t at = 0;
    std::string_view lastString;
    std::vector<std::set<std::u16string>> keysOfOpen; ///< of each open array or object; none in an array
};

} // namespace

JsonFlaw FindJsonFlaw(std::string_view text, std::size_t maxDepth) {
    return FlawFinder(text, maxDepth).Find();
}

namespace OstraSdk {

namespace {

VeJson FromQt(const QJsonValue& value, int depth);

VeJson FromNumber(double number) {
    constexpr double kMaxExact = 9007199254740992.0;
    if (std::abs(number) <= kMaxExact && std::trunc(number) == number)
        return VeJson(VeJson::Value(static_cast<std::int64_t>(number)));
    return VeJson(VeJson::Value(number));
}

VeJson FromArray(const QJsonArray& array, int depth) {
    VeJson::Array values;
    values.reserve(static_cast<std::size_t>(array.size()));
    for (const QJsonValue& value : array)
        values.push_back(FromQt(value, depth + 1));
    return VeJson(VeJson::Value(std::move(values)));
}

VeJson FromObject(const QJsonObject& object, int depth) {
    VeJson::Object members;
    for (auto member = object.begin(); member != object.end(); ++member)
        members.insert_or_assign(member.key().toStdString(), FromQt(member.value(), depth + 1));
    return VeJson(VeJson::Value(std::move(members)));
}

VeJson FromQt(const QJsonValue& value, int depth) {
    if (depth > VeJson::kMaxDepth)
        throw Ve::Exception(__LINE__, __FILE__, bERROR_LIMIT, "FromJsonText", "The values nest too deep.");
    switch (value.type()) {
    case QJsonValue::Bool:
        return VeJson(VeJson::Value(value.toBool()));
    case QJsonValue::Double:
        return FromNumber(value.toDouble());
    case QJsonValue::String:
        return VeJson(VeJson::Value(value.toString().toStdString()));
    case QJsonValue::Array:
        return FromArray(value.toArray(), depth);
    case QJsonValue::Object:
        return FromObject(value.toObject(), depth);
    default:
        return {};
    }
}

QJsonValue ToQt(const VeJson& json);

QJsonValue ToQt(std::monostate) {
    return {};
}
QJsonValue ToQt(bool flag) {
    return flag;
}
QJsonValue ToQt(std::int64_t number) {
    return static_cast<qint64>(number);
}
QJsonValue ToQt(double number) {
    return number;
}
QJsonValue ToQt(const std::string& text) {
    return QString::fromStdString(text);
}

[[noreturn]] QJsonValue ToQt(const VeJson::Binary&) {
    throw Ve::Exception(__LINE__, __FILE__, bERROR_PARAMETER, "ToJsonText", "A text cannot hold bytes.");
}

QJsonValue ToQt(const VeJson::Array& values) {
    QJsonArray array;
    for (const VeJson& value : values)
        array.append(ToQt(value));
    return array;
}

QJsonValue ToQt(const VeJson::Object& members) {
    QJsonObject object;
    for (const auto& [key, member] : members)
        object.insert(QString::fromStdString(key), ToQt(member));
    return object;
}

QJsonValue ToQt(const VeJson& json) {
    return std::visit([](const auto& content) { return ToQt(content); }, json.Content());
}

void CheckFlaws(std::string_view text) {
    const JsonFlaw flaw = FindJsonFlaw(text, VeJson::kMaxDepth);
    if (flaw == JsonFlaw::TooDeep)
        throw Ve::Exception(__LINE__, __FILE__, bERROR_LIMIT, "FromJsonText", "The values nest too deep.");
    if (flaw == JsonFlaw::RepeatedKey)
        throw Ve::Exception(__LINE__, __FILE__, bERROR_FORMAT, "FromJsonText", "A key is repeated.");
    if (flaw == JsonFlaw::ZeroInKey)
        throw Ve::Exception(__LINE__, __FILE__, bERROR_FORMAT, "FromJsonText", "A key holds a zero byte.");
}

} // namespace

VeJson FromJsonText(std::string_view text) {
    if (text.size() > kMaxText)
        throw Ve::Exception(__LINE__, __FILE__, bERROR_LIMIT, "FromJsonText", "The text is too long.");
    CheckFlaws(text);
    QJsonParseError error;
    const QByteArray bytes = QByteArray::fromRawData(text.data(), static_cast<int>(text.size()));
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &error);
    if (document.isNull())
        throw Ve::Exception(__LINE__, __FILE__, bERROR_FORMAT, "FromJsonText", "Not JSON at byte %d: %s.",
                            error.offset, qPrintable(error.errorString()));
    return document.isArray() ? FromArray(document.array(), 1) : FromObject(document.object(), 1);
}

std::string ToJsonText(const VeJson& json) {
    const QJsonValue value = ToQt(json);
    const QJsonDocument document =
        value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject());
    return document.toJson(QJsonDocument::Compact).toStdString();
}

} // namespace OstraSdk
