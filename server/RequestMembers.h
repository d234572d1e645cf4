#pragma once

#include "server/CborCursor.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

/// Takes a byte string of `size` bytes off a body, from its start on; what it leaves is passed over.
using ByteStringSink = std::function<void(CborCursor& body, std::uint64_t size)>;

/// The members of a request's body that the server knows; others are passed over.
struct RequestMembers {
    bool allWorkspaces = false;  ///< "contents" is a list that names "allWorkspaces"
    std::optional<bool> enabled; ///< "enabled"
    bool data = false;           ///< "data" was there

    /// Reads a JSON or a CBOR body, as its content type says (none: JSON). An empty body has no members.
    /// @param takeData gets "data" while it arrives, at most once; the rest of the body may still be refused
    /// @throws RequestError with status 400 for a body that is no map or not well-formed, nests deeper than
    /// 64
    ///         levels, or has a known member (in JSON: any key) twice or a known one of the wrong type; and
    ///         what RequestReader::Read throws
    static RequestMembers Read(RequestReader& body, const ByteStringSink& takeData);

    /// Whether a content type announces CBOR.
    static bool IsCbor(const std::string& contentType);
};
