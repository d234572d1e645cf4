#pragma once

#include <string>
#include <string_view>

// The secret that a server and its clients share where not everyone who reaches the port may use it. It
// travels in the field "Authorization: Bearer TOKEN", readable for whoever can read the connection.

/// The token in the first line of a file.
/// @throws Ve::Exception: bERROR_FILE when it cannot be read, bERROR_FORMAT when the line is no token: 1 to
///         1,000 letters, digits or any of "-._~+/="
std::string ReadAccessToken(const std::string& path);

/// The value of the field for a token.
std::string BearerOf(std::string_view token);

/// Whether the value of the field has this token. Takes the same time whatever it is compared with.
[[nodiscard]] bool IsBearerOf(std::string_view value, std::string_view token);
