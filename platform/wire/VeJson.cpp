#include "wire/VeJson.h"

#include "basalt/Exception.h"
#include "basalt/bStatus.h"
#include "wire/JsonText.h"

namespace OstraSdk {

namespace {

[[noreturn]] void ThrowOtherType(int line, const char* function, const char* wanted) {
    throw Ve::Exception(line, __FILE__, bERROR_FORMAT, function, "The value is not %s.", wanted);
}

const VeJson& Member(const VeJson::Value& value, std::string_view key) {
    const auto* const object = std::get_if<VeJson::Object>(&value);
    if (object == nullptr)
        ThrowOtherType(__LINE__, "VeJson::At", "an object");
    const auto found = object->find(key);
    if (found == object->end())
        throw Ve::Exception(__LINE__, __FILE__, bERROR_FORMAT, "VeJson::At", "The member \"%s\" is missing.",
                            std::string(key).c_str());
    return found->second;
}

} // namespace

// Not in the header: each is a switch over all types, and every user would have its own.
VeJson::VeJson() = default;
VeJson::VeJson(Value value) : value(std::move(value)) {
}
VeJson::VeJson(const VeJson& other) = default;
VeJson::VeJson(VeJson&& other) noexcept = default;
VeJson& VeJson::operator=(const VeJson& other) = default;
VeJson& VeJson::operator=(VeJson&& other) noexcept = default;
VeJson::~VeJson() = default;

VeJson VeJson::ParseString(std::string_view text) {
    return FromJsonText(text);
}

bool VeJson::Has(std::string_view key) const {
    const auto* const object = std::get_if<Object>(&value);
    return object != nullptr && object->find(key) != object->end();
}

const VeJson& VeJson::At(std::string_view key) const {
    return Member(value, key);
}

VeJson& VeJson::At(std::string_view key) {
    return const_cast<VeJson&>(Member(value, key));
}

template<>
bool VeJson::Get<bool>() const {
    if (const auto* const flag = std::get_if<bool>(&value))
        return *flag;
    ThrowOtherType(__LINE__, "VeJson::Get", "true or false");
}

template<>
std::int64_t VeJson::Get<std::int64_t>() const {
    if (const auto* const number = std::get_if<std::int64_t>(&value))
        return *number;
    ThrowOtherType(__LINE__, "VeJson::Get", "an integer");
}

template<>
double VeJson::Get<double>() const {
    if (const auto* const number = std::get_if<double>(&value))
        return *number;
    if (const auto* const number = std::get_if<std::int64_t>(&value))
        return static_cast<double>(*number);
    ThrowOtherType(__LINE__, "VeJson::Get", "a number");
}

template<>
std::string VeJson::Get<std::string>() const {
    if (const auto* const text = std::get_if<std::string>(&value))
        return *text;
    ThrowOtherType(__LINE__, "VeJson::Get", "a text");
}

const VeJson::Bytes& VeJson::GetBinary() const {
    if (const auto* const binary = std::get_if<Binary>(&value))
        return **binary;
    ThrowOtherType(__LINE__, "VeJson::GetBinary", "a byte string");
}

void VeJson::Set(const std::string& key, VeJson member) {
    if (IsEmpty())
        value = Object();
    auto* const object = std::get_if<Object>(&value);
    if (object == nullptr)
        ThrowOtherType(__LINE__, "VeJson::Set", "an object");
    object->insert_or_assign(key, std::move(member));
}

void VeJson::Set(const std::string& key, Bytes&& bytes) {
    Set(key, VeJson(Value(std::make_shared<const Bytes>(std::move(bytes)))));
}

} // namespace OstraSdk
