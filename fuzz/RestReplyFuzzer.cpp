#include "Check.h"
#include "basalt/Exception.h"
#include "wire/JsonText.h"
#include "wire/MessageReader.h"
#include "wire/WireBody.h"

#include <boost/asio/error.hpp>

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

using OstraSdk::ReplyMessage;
using OstraSdk::VeJson;

constexpr std::uint64_t kMaxReply = std::uint64_t{4} << 30U;

/// A connection that delivers these bytes in pieces of a fixed size.
class Arrival final : public OstraSdk::InputStream {
  public:
    Arrival(const std::uint8_t* data, std::size_t size, std::size_t pieceSize)
        : data(data), left(size), pieceSize(pieceSize) {}

    std::size_t ReadSome(void* bytes, std::size_t capacity, boost::system::error_code& error) override {
        const std::size_t count = std::min({capacity, left, pieceSize});
        error = count == 0 ? boost::asio::error::eof : boost::system::error_code();
        std::copy_n(data, count, static_cast<std::uint8_t*>(bytes));
        data += count;
        left -= count;
        return count;
    }

  private:
    const std::uint8_t* data;
    std::size_t left;
    std::size_t pieceSize;
};

/// A body in memory.
class Held final : public OstraSdk::ByteSource {
  public:
    explicit Held(std::vector<std::string_view> parts) : parts(std::move(parts)) {}

    std::size_t Read(char* bytes, std::size_t capacity) override {
        while (at < parts.size() && parts[at].empty())
            ++at;
        if (at == parts.size())
            return 0;
        const std::size_t count = parts[at].copy(bytes, capacity);
        parts[at].remove_prefix(count);
        return count;
    }

  private:
    std::vector<std::string_view> parts;
    std::size_t at = 0;
};

/// The value in a reply that arrives in pieces of this size; nothing when there is none.
std::optional<VeJson> Received(const std::uint8_t* data, std::size_t size, std::size_t pieceSize) {
    Arrival arrival(data, size, pieceSize);
    OstraSdk::ReadAhead ahead;
    ReplyMessage reply(arrival, ahead);
    if (!reply.ReadHead())
        return std::nullopt;
    reply.BeginBody(kMaxReply);
    VeJson value = OstraSdk::ReadBody(reply, reply.Value(ReplyMessage::Field::content_type),
                                      {reply.MaxBytes(), OstraSdk::kMaxText});
    reply.CheckDigest(false);
    return value;
}

std::optional<VeJson> ReceivedOrRefused(const std::uint8_t* data, std::size_t size, std::size_t pieceSize) {
    try {
        return Received(data, size, pieceSize);
    } catch (const Ve::Exception&) {
        return std::nullopt;
    }
}

/// How two values are compared: JSON text has only doubles, and none that are not finite.
enum class Exactness { Bits, Text };

bool Same(const VeJson& one, const VeJson& other, Exactness exactness);

struct Comparison {
    const VeJson& other;
    Exactness exactness;

    template<typename Content>
    bool operator()(const Content& content) const {
        const auto* const same = std::get_if<Content>(&other.Content());
        return same != nullptr && *same == content;
    }
    bool operator()(std::int64_t number) const {
        return exactness == Exactness::Text ? SameNumber(static_cast<double>(number))
                                            : other.Get<std::int64_t>() == number;
    }
    bool operator()(double number) const {
        if (exactness == Exactness::Text && !std::isfinite(number))
            return other.IsEmpty();
        return SameNumber(number);
    }
    bool operator()(const VeJson::Binary& bytes) const { return other.GetBinary() == *bytes; }
    bool operator()(const VeJson::Array& values) const {
        const auto* const others = std::get_if<VeJson::Array>(&other.Content());
        if (others == nullptr || others->size() != values.size())
            return false;
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (!Same(values[i], (*others)[i], exactness))
                return false;
        }
        return true;
    }
    bool operator()(const VeJson::Object& members) const {
        const auto* const others = std::get_if<VeJson::Object>(&other.Content());
        if (others == nullptr || others->size() != members.size())
            return false;
        for (const auto& [key, member] : members) {
            const auto found = others->find(key);
            if (found == others->end() || !Same(member, found->second, exactness))
                return false;
        }
        return true;
    }

  private:
    [[nodiscard]] bool SameNumber(double number) const {
        const auto found = other.Get<double>();
        return found == number || (std::isnan(found) && std::isnan(number));
    }
};

bool Same(const VeJson& one, const VeJson& other, Exactness exactness) {
    return std::visit(Comparison{other, exactness}, one.Content());
}

int DepthOf(const VeJson& json) {
    int deepest = 0;
    if (const auto* const values = std::get_if<VeJson::Array>(&json.Content())) {
        for (const VeJson& value : *values)
            deepest = std::max(deepest, DepthOf(value));
    } else if (const auto* const members = std::get_if<VeJson::Object>(&json.Content())) {
        for (const auto& [key, member] : *members)
            deepest = std::max(deepest, DepthOf(member));
    } else {
        return 0;
    }
    return deepest + 1;
}

/// Sends a value as this program would and reads it back.
void CheckRoundTrip(const VeJson& json) {
    const OstraSdk::WireBody body(json);
    Held held(body.Parts());
    const VeJson received =
        OstraSdk::ReadBody(held, body.ContentType(), {body.Size(), static_cast<std::size_t>(kMaxReply)});
    const Exactness exactness = OstraSdk::IsCborType(body.ContentType()) ? Exactness::Bits : Exactness::Text;
    Check(Same(json, received, exactness), "a value is received as it was sent");
}

} // namespace

// Any bytes as a server's reply, header included.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kAtOnce = std::size_t{64} * 1024;
    const std::optional<VeJson> json = ReceivedOrRefused(data, size, kAtOnce);
    const std::optional<VeJson> inPieces = ReceivedOrRefused(data, size, 1 + size % 7);
    Check(json.has_value() == inPieces.has_value(), "it does not matter how a reply is cut");
    if (!json)
        return 0;
    Check(Same(*json, *inPieces, Exactness::Bits), "it does not matter how a reply is cut");
    Check(DepthOf(*json) <= VeJson::kMaxDepth, "no value nests too deep");
    try {
        CheckRoundTrip(*json);
    } catch (const Ve::Exception& failure) {
        Broken(std::string("a value that was received can be sent: ") + failure.what());
    }
    return 0;
}
