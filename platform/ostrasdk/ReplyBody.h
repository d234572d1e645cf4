#pragma once

#include "wire/CborReader.h"
#include "wire/Crc32c.h"
#include "wire/VeJson.h"

#include <boost/beast/core/buffers_range.hpp>
#include <boost/beast/http/message.hpp>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace OstraSdk {

/// The body of a reply, read while it arrives. Throws Ve::Exception for one that cannot be understood.
class ReplyBody {
  public:
    /// Called once the head of the reply is known.
    /// @param size of the whole body, where it is known
    void Start(std::string_view contentType, std::optional<std::uint64_t> size);

    /// Takes the next bytes.
    void Take(const void* data, std::size_t size);

    /// The value, once every byte was taken; an empty body is an empty value.
    [[nodiscard]] VeJson Finish();

    /// CRC-32C of the bytes taken.
    [[nodiscard]] std::uint32_t Checksum() const { return checksum.Value(); }

  private:
    Crc32c checksum;
    std::optional<CborReader> cbor; ///< for a body in CBOR
    std::string text;               ///< any other body
    bool empty = true;
};

/// Lets Beast's parser hand its bytes to a ReplyBody.
struct BeastReplyBody {
    using value_type = ReplyBody;

    class reader {
      public:
        template<bool isRequest, class Fields>
        reader(boost::beast::http::header<isRequest, Fields>&, ReplyBody& body) : body(body) {}

        void init(const boost::optional<std::uint64_t>&, boost::beast::error_code& error) { error = {}; }

        template<class Buffers>
        std::size_t put(const Buffers& buffers, boost::beast::error_code& error) {
            std::size_t size = 0;
            for (const auto buffer : boost::beast::buffers_range_ref(buffers)) {
                body.Take(buffer.data(), buffer.size());
                size += buffer.size();
            }
            error = {};
            return size;
        }

        void finish(boost::beast::error_code& error) { error = {}; }

      private:
        ReplyBody& body;
    };
};

} // namespace OstraSdk
