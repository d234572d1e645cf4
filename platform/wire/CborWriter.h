#pragma once

#include "wire/VeJson.h"

#include <QIODevice>

#include <string>
#include <variant>
#include <vector>

namespace OstraSdk {

/// Writes a value as CBOR in parts: its byte strings stay where they are and are shared, the rest is text
/// between them.
class CborWriter final : public QIODevice {
  public:
    using Part = std::variant<std::string, VeJson::Binary>;

    /// The parts in their order.
    static std::vector<Part> PartsOf(const VeJson& json);

  protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char* data, qint64 size) override;

  private:
    CborWriter() = default;

    VeJson::Binary announced; ///< the byte string that comes next
    std::vector<Part> parts;
};

} // namespace OstraSdk
