#include "Check.h"
#include "basalt/Exception.h"
#include "ostrasdk/ReplyBody.h"
#include "wire/WireBody.h"

#include <boost/asio/buffer.hpp>
#include <boost/beast/http/parser.hpp>

#include <cmath>
#include <optional>

namespace {

namespace http = boost::beast::http;
using OstraSdk::VeJson;

/// Offers a parser the bytes of a reply as a connection does: some more each time, and what it left again.
class Arrival {
  public:
    Arrival(const std::uint8_t* data, std::size_t size, std::size_t pieceSize)
        : data(data), size(size), pieceSize(pieceSize) {}

    /// @return false when the reply is broken, or ends before `done` is true
    template<typename Parser, typename Done>
    bool GiveUntil(Parser& parser, Done done) {
        while (!done()) {
            if (arrived == size && (isStuck || taken == size))
                return false;
            arrived = std::min(size, arrived + pieceSize);
            boost::beast::error_code error;
            const std::size_t used = parser.put(boost::asio::buffer(data + taken, arrived - taken), error);
            taken += used;
            isStuck = used == 0;
            if (error && error != http::error::need_more)
                return false;
        }
        return true;
    }

    [[nodiscard]] bool IsAtEnd() const { return taken == size; }

  private:
    const std::uint8_t* data;
    std::size_t size;
    std::size_t pieceSize;
    std::size_t arrived = 0;
    std::size_t taken = 0;
    bool isStuck = false;
};

/// The value in a reply that arrives in pieces of this size; nothing when it is refused.
std::optional<VeJson> Received(const std::uint8_t* data, std::size_t size, std::size_t pieceSize) {
    http::response_parser<OstraSdk::BeastReplyBody> parser;
    parser.body_limit(std::uint64_t{4} << 30U);
    Arrival arrival(data, size, pieceSize);
    if (!arrival.GiveUntil(parser, [&] { return parser.is_header_done(); }))
        return std::nullopt;
    std::optional<std::uint64_t> length;
    if (const auto declared = parser.content_length())
        length = *declared;
    const auto type = parser.get()[http::field::content_type];
    parser.get().body().Start({type.data(), type.size()}, length);
    parser.eager(true);
    if (!arrival.GiveUntil(parser, [&] { return parser.is_done(); })) {
        boost::beast::error_code error;
        if (arrival.IsAtEnd())
            parser.put_eof(error);
        if (error || !parser.is_done())
            return std::nullopt;
    }
    return parser.get().body().Finish();
}

std::optional<VeJson> ReceivedOrRefused(const std::uint8_t* data, std::size_t size, std::size_t pieceSize) {
    try {
        return Received(data, size, pieceSize);
    } catch (const Ve::Exception&) {
        return std::nullopt;
    }
}

/// How two values are compared: a JSON text has doubles alone, and no place for those that are not finite.
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

/// Sends a value as this program would and takes it back.
void CheckRoundTrip(const VeJson& json) {
    const OstraSdk::WireBody body(json);
    OstraSdk::ReplyBody reply;
    reply.Start(body.ContentType(), body.Size());
    for (const std::string_view part : body.Parts())
        reply.Take(part.data(), part.size());
    const Exactness exactness = OstraSdk::IsCborType(body.ContentType()) ? Exactness::Bits : Exactness::Text;
    Check(Same(json, reply.Finish(), exactness), "a value is received as it was sent");
}

} // namespace

// Any bytes as what a server sends, the head included.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kAtOnce = std::size_t{64} * 1024;
    const std::optional<VeJson> json = ReceivedOrRefused(data, size, kAtOnce);
    const std::optional<VeJson> inPieces = ReceivedOrRefused(data, size, 1 + size % 7);
    Check(json.has_value() == inPieces.has_value(), "it does not matter how a reply is cut");
    if (!json)
        return 0;
    Check(Same(*json, *inPieces, Exactness::Bits), "it does not matter how a reply is cut");
    Check(DepthOf(*json) <= VeJson::kDeepest, "no value nests too deep");
    try {
        CheckRoundTrip(*json);
    } catch (const Ve::Exception& failure) {
        Broken(std::string("a value that was received can be sent: ") + failure.what());
    }
    return 0;
}
