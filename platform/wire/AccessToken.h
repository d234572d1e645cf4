#pragma once

#include <string>
#include <string_view>

// The secret that a server and its clients share if not everyone who can reach the port may use it. It is
// sent in the field "Authorization: Bearer TOKEN", readable for anyone who can read the connection.

/// The token in the first line of a file.
/// @throws Ve::Exception: bERROR_FILE when it cannot be read, bERROR_FORMAT when the line is not a token: 1
///         to 1,000 letters, digits or any of "-._~+/="
std::string ReadAccessToken(const std::string& path);

/// The value of the field for a token.
std::string BearerOf(std::string_view token);

/// Whether the value of the field has this token. Takes the same time for every value of a length.
[[nodiscard]] bool IsBearerOf(std::string_view value, std::string_view token);
