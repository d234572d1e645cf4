#include "wire/JsonText.h"

#include "basalt/Exception.h"
#include "basalt/bStatus.h"
#include "wire/JsonFlaw.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace OstraSdk {

namespace {

VeJson FromQt(const QJsonValue& value, int depth);

VeJson FromNumber(double number) {
    constexpr double kLargestExact = 9007199254740992.0;
    if (std::abs(number) <= kLargestExact && std::trunc(number) == number)
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
    if (depth > VeJson::kDeepest)
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
    const JsonFlaw flaw = FindJsonFlaw(text, VeJson::kDeepest);
    if (flaw == JsonFlaw::TooDeep)
        throw Ve::Exception(__LINE__, __FILE__, bERROR_LIMIT, "FromJsonText", "The values nest too deep.");
    if (flaw == JsonFlaw::RepeatedKey)
        throw Ve::Exception(__LINE__, __FILE__, bERROR_FORMAT, "FromJsonText", "A key stands twice.");
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
