#include "wire/CborWriter.h"

#include <QCborStreamWriter>

#include <functional>

namespace OstraSdk {

namespace {

/// Writes one value to a device, which is told of each byte string before that is written.
class ValueWriter {
  public:
    ValueWriter(QIODevice* device, std::function<void(const VeJson::Binary&)> announceBytes)
        : writer(device), announceBytes(std::move(announceBytes)) {}

    void Write(const VeJson& json) {
        std::visit([this](const auto& content) { WriteContent(content); }, json.Content());
    }

  private:
    void WriteContent(std::monostate) { writer.appendNull(); }
    void WriteContent(bool flag) { writer.append(flag); }
    void WriteContent(std::int64_t number) { writer.append(static_cast<qint64>(number)); }
    void WriteContent(double number) { writer.append(number); }
    void WriteContent(const std::string& text) { WriteText(text); }
    void WriteContent(const VeJson::Binary& bytes) {
        announceBytes(bytes);
        writer.appendByteString(reinterpret_cast<const char*>(bytes->data()),
                                static_cast<qsizetype>(bytes->size()));
    }
    void WriteContent(const VeJson::Array& values) {
        writer.startArray(values.size());
        for (const VeJson& value : values)
            Write(value);
        writer.endArray();
    }
    void WriteContent(const VeJson::Object& members) {
        writer.startMap(members.size());
        for (const auto& [key, member] : members) {
            WriteText(key);
            Write(member);
        }
        writer.endMap();
    }
    void WriteText(const std::string& text) {
        writer.appendTextString(text.data(), static_cast<qsizetype>(text.size()));
    }

    QCborStreamWriter writer;
    std::function<void(const VeJson::Binary&)> announceBytes;
};

} // namespace

std::vector<CborWriter::Part> CborWriter::PartsOf(const VeJson& json) {
    CborWriter parts;
    parts.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    ValueWriter(&parts, [&parts](const VeJson::Binary& bytes) { parts.announced = bytes; }).Write(json);
    return std::move(parts.parts);
}

/// The byte string that was announced comes as it lies in memory, and is shared in place of being copied.
qint64 CborWriter::writeData(const char* data, qint64 size) {
    const auto length = static_cast<std::size_t>(size);
    const bool isAnnounced =
        announced && reinterpret_cast<const char*>(announced->data()) == data && announced->size() == length;
    if (isAnnounced)
        parts.emplace_back(std::move(announced));
    else if (parts.empty() || std::holds_alternative<VeJson::Binary>(parts.back()))
        parts.emplace_back(std::string(data, length));
    else
        std::get<std::string>(parts.back()).append(data, length);
    return size;
}

} // namespace OstraSdk
