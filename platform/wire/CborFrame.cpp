#include "wire/CborFrame.h"

#include "basalt/Exception.h"
#include "basalt/bStatus.h"

#include <QCborStreamReader>

#include <cstddef>

namespace OstraSdk {

namespace {

[[noreturn]] void Throw(int line, bStatus status, const char* reason) {
    throw Ve::Exception(line, __FILE__, status, "FromCborFrame", "%s", reason);
}

class FrameReader {
  public:
    FrameReader(const QByteArray& frame, std::vector<VeJson::Bytes>& byteStrings)
        : reader(frame), byteStrings(byteStrings) {}

    VeJson Whole(qint64 size) {
        if (!reader.isMap() && !reader.isArray())
            Throw(__LINE__, bERROR_FORMAT, "The body is neither a map nor an array.");
        VeJson whole = Next(1);
        if (reader.currentOffset() != size)
            Throw(__LINE__, bERROR_FORMAT, "Something follows the body's value.");
        return whole;
    }

  private:
    VeJson Next(int depth) {
        if (depth > VeJson::kDeepest)
            Throw(__LINE__, bERROR_LIMIT, "The values nest too deep.");
        if (reader.isMap())
            return Map(depth);
        if (reader.isArray())
            return Array(depth);
        return VeJson(reader.isByteArray() ? Bytes() : reader.isString() ? Text() : Simple());
    }

    VeJson Map(int depth) {
        VeJson::Object members;
        Enter();
        while (HasNext()) {
            if (!reader.isString())
                Throw(__LINE__, bERROR_FORMAT, "A key is not a text.");
            std::string key = std::get<std::string>(Text());
            const auto [member, isNew] = members.try_emplace(std::move(key));
            if (!isNew)
                Throw(__LINE__, bERROR_FORMAT, "A key stands twice.");
            member->second = Next(depth + 1);
        }
        Leave();
        return VeJson(VeJson::Value(std::move(members)));
    }

    VeJson Array(int depth) {
        VeJson::Array values;
        Enter();
        while (HasNext())
            values.push_back(Next(depth + 1));
        Leave();
        return VeJson(VeJson::Value(std::move(values)));
    }

    /// The pieces of a string together.
    template<class String, class Read>
    String AllOf(Read read) {
        auto piece = read();
        String whole = piece.data;
        while (piece.status == QCborStreamReader::Ok) {
            piece = read();
            whole += piece.data;
        }
        if (piece.status == QCborStreamReader::Error)
            Throw(__LINE__, bERROR_FORMAT, "A string is cut short or is not UTF-8.");
        return whole;
    }

    VeJson::Value Bytes() {
        static_cast<void>(AllOf<QByteArray>([this] { return reader.readByteArray(); }));
        return std::make_shared<const VeJson::Bytes>(std::move(byteStrings.at(nextByteString++)));
    }

    VeJson::Value Text() {
        return AllOf<QString>([this] { return reader.readString(); }).toStdString();
    }

    VeJson::Value Simple() {
        VeJson::Value value;
        if (reader.isUnsignedInteger() || reader.isNegativeInteger())
            value = Integer();
        else if (reader.isFloat16())
            value = static_cast<double>(float(reader.toFloat16()));
        else if (reader.isFloat())
            value = static_cast<double>(reader.toFloat());
        else if (reader.isDouble())
            value = reader.toDouble();
        else if (reader.isBool())
            value = reader.toBool();
        else if (!reader.isNull())
            Throw(__LINE__, bERROR_FORMAT, "The body is cut short or holds what a value cannot.");
        Step();
        return value;
    }

    VeJson::Value Integer() {
        constexpr std::uint64_t kLargest = INT64_MAX;
        const bool negative = reader.isNegativeInteger();
        // Of a negative number the absolute value is told, and 0 stands for 2^64.
        const auto absolute =
            negative ? static_cast<std::uint64_t>(reader.toNegativeInteger()) : reader.toUnsignedInteger();
        if (absolute > kLargest || (negative && absolute == 0))
            Throw(__LINE__, bERROR_LIMIT, "An integer is out of range.");
        const auto number = static_cast<std::int64_t>(absolute);
        return negative ? -number : number;
    }

    bool HasNext() {
        if (reader.lastError() != QCborError::NoError)
            Throw(__LINE__, bERROR_FORMAT, "The body is cut short or broken.");
        return reader.hasNext();
    }
    void Enter() {
        if (!reader.enterContainer())
            Throw(__LINE__, bERROR_FORMAT, "The body is cut short.");
    }
    void Leave() {
        if (reader.lastError() != QCborError::NoError || !reader.leaveContainer())
            Throw(__LINE__, bERROR_FORMAT, "The body is cut short.");
    }
    void Step() {
        if (!reader.next())
            Throw(__LINE__, bERROR_FORMAT, "The body is cut short.");
    }

    QCborStreamReader reader;
    std::vector<VeJson::Bytes>& byteStrings;
    std::size_t nextByteString = 0;
};

} // namespace

VeJson FromCborFrame(const QByteArray& frame, std::vector<VeJson::Bytes>&& byteStrings) {
    return FrameReader(frame, byteStrings).Whole(frame.size());
}

} // namespace OstraSdk
