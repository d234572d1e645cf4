#pragma once

#include <concepts>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace OstraSdk {

/// A JSON value that may also hold bytes: the content of the bodies of requests and replies.
///
/// A plain value. Bytes never change once set, and copies share them, so that copying a value that holds a
/// complete backup costs nothing. Every operation that finds another type than it needs throws a
/// Ve::Exception with status bERROR_FORMAT.
class VeJson {
  public:
    using Bytes = std::vector<std::uint8_t>;
    using Binary = std::shared_ptr<const Bytes>;
    using Array = std::vector<VeJson>;
    using Object = std::map<std::string, VeJson, std::less<>>;
    using Value =
        std::variant<std::monostate, bool, std::int64_t, double, std::string, Binary, Array, Object>;

    /// Values nest no deeper than this; a deeper text or body is refused.
    static constexpr int kMaxDepth = 64;

    /// The empty value: nothing when it is a request's body, null inside another value.
    VeJson();
    explicit VeJson(Value value);
    VeJson(const VeJson& other);
    VeJson(VeJson&& other) noexcept;
    VeJson& operator=(const VeJson& other);
    VeJson& operator=(VeJson&& other) noexcept;
    ~VeJson();

    /// Reads a JSON text whose outermost value is an object or an array. A repeated key in an object is
    /// refused: readers differ in which of them counts.
    static VeJson ParseString(std::string_view text);

    [[nodiscard]] bool IsEmpty() const { return std::holds_alternative<std::monostate>(value); }
    [[nodiscard]] bool IsObject() const { return std::holds_alternative<Object>(value); }
    [[nodiscard]] bool Has(std::string_view key) const;

    /// The member of an object; a missing key is a failure.
    [[nodiscard]] const VeJson& At(std::string_view key) const;
    [[nodiscard]] VeJson& At(std::string_view key);

    /// The value as bool, std::int64_t, double (also from an integer) or std::string.
    template<class T>
    [[nodiscard]] T Get() const;

    /// The bytes; they live as long as any copy of this value.
    [[nodiscard]] const Bytes& GetBinary() const;

    /// Adds or replaces a member; an empty value becomes an object first.
    void Set(const std::string& key, VeJson member);
    void Set(const std::string& key, std::string text) { Set(key, VeJson(Value(std::move(text)))); }
    void Set(const std::string& key, const char* text) { Set(key, std::string(text)); }
    void Set(const std::string& key, double number) { Set(key, VeJson(Value(number))); }
    template<std::same_as<bool> Flag>
    void Set(const std::string& key, Flag flag) {
        Set(key, VeJson(Value(flag)));
    }
    template<std::integral Number>
    requires(!std::same_as<Number, bool>) void Set(const std::string& key, Number number) {
        Set(key, VeJson(Value(static_cast<std::int64_t>(number))));
    }
    void Set(const std::string& key, const Bytes& bytes) { Set(key, Bytes(bytes)); }
    /// Takes ownership of the bytes without copying them.
    void Set(const std::string& key, Bytes&& bytes);

    /// The value's content, for writers.
    [[nodiscard]] const Value& Content() const { return value; }

  private:
    Value value;
};

template<>
bool VeJson::Get<bool>() const;
template<>
std::int64_t VeJson::Get<std::int64_t>() const;
template<>
double VeJson::Get<double>() const;
template<>
std::string VeJson::Get<std::string>() const;

} // namespace OstraSdk
