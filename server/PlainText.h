#pragma once

#include <string>
#include <string_view>

/// Text from outside made fit for a log line or an error: printable ASCII as it is, every other byte as "?",
/// cut at 200 characters.
std::string PlainText(std::string_view text);
