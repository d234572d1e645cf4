#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// The checksum CRC-32C (Castagnoli) of bytes that come piece by piece. It detects errors of a faulty network
/// or memory, including every burst of up to 32 bits; it does not protect against intent.
class Crc32c final {
  public:
    void Take(const void* data, std::size_t size);

    /// Of all bytes taken so far.
    [[nodiscard]] std::uint32_t Value() const { return ~state; }

  private:
    std::uint32_t state = 0xFFFFFFFFU;
};

// What HTTP's fields say about the digest of a body. The one algorithm used here is CRC-32C: it detects bits
// that flipped in transit and takes almost no time.

constexpr const char* kContentDigest = "Content-Digest";
constexpr const char* kWantContentDigest = "Want-Content-Digest";
/// The value of Want-Content-Digest that asks for it.
constexpr const char* kWantedDigest = "crc32c=1";

enum class DigestCheck {
    NotGiven, ///< the field names other algorithms only, or nothing
    Equal,
    Different, ///< another checksum, or an invalid one
};

/// The value of a Content-Digest field for a body with this checksum.
std::string ContentDigest(std::uint32_t crc32c);

/// What the value of a Content-Digest field says about a body with this checksum.
DigestCheck CheckContentDigest(std::string_view field, std::uint32_t crc32c);

/// Whether the value of a Want-Content-Digest field asks for the one algorithm.
bool WantsCrc32c(std::string_view field);
