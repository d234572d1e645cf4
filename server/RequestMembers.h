#pragma once

#include "BodySpool.h"

#include <cstdint>
#include <optional>
#include <string>

/// Where bytes lie within a body.
struct ByteRange {
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
};

/// The members of a request's body that the server knows; others are passed over.
struct RequestMembers {
    bool allWorkspaces = false;    ///< "contents" is a list that names "allWorkspaces"
    std::optional<bool> enabled;   ///< "enabled"
    std::optional<ByteRange> data; ///< "data", left where it is in the body

    /// Reads a JSON or a CBOR body, as its content type says (none: JSON). An empty body has no members.
    /// @throws RequestError with status 400 for a body that is no map or not well-formed, nests deeper than
    /// 64
    ///         levels, or has a known member twice or of the wrong type
    static RequestMembers Read(const std::string& contentType, const BodySpool& body);

    /// Whether a content type announces CBOR.
    static bool IsCbor(const std::string& contentType);
};
