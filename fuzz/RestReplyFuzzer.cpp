#include "Check.h"
#include "Exception.h"
#include "ReplyBody.h"
#include "WireBody.h"

#include <boost/asio/buffer.hpp>
#include <boost/beast/http/parser.hpp>

#include <cmath>
#include <optional>

namespace {

namespace http = boost::beast::http;
using OstraSdk::VeJson;

/// The value in a reply that arrives in pieces of this size; nothing when it is refused.
std::optional<VeJson> Received(const std::uint8_t* data, std::size_t size, std::size_t pieceSize) {
    http::response_parser<OstraSdk::BeastReplyBody> parser;
    parser.body_limit(std::uint64_t{4} << 30U);
    boost::beast::error_code error;
    std::size_t taken = 0;
    const auto give = [&](std::size_t count) {
        taken += parser.put(boost::asio::buffer(data + taken, std::min(count, size - taken)), error);
    };
    // The head is parsed once it is there, as far as needed.
    for (std::size_t seen = 1; !parser.is_header_done(); seen += pieceSize) {
        give(seen);
        if ((error && error != http::error::need_more) || (error && taken + seen >= size))
            return std::nullopt;
    }
    std::optional<std::uint64_t> length;
    if (const auto declared = parser.content_length())
        length = *declared;
    const auto type = parser.get()[http::field::content_type];
    parser.get().body().Start({type.data(), type.size()}, length);
    parser.eager(true);
    for (std::size_t seen = pieceSize; !parser.is_done() && taken < size;) {
        const std::size_t before = taken;
        give(seen);
        if (error && error != http::error::need_more)
            return std::nullopt;
        if (taken != before)
            seen = pieceSize;
        else if (taken + seen >= size)
            break;
        else
            seen += pieceSize;
    }
    if (!parser.is_done())
        parser.put_eof(error);
    if (error || !parser.is_done())
        return std::nullopt;
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
    constexpr std::size_t kAtOnce = 64 * 1024;
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
