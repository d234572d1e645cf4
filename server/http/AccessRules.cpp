#include "server/http/AccessRules.h"

#include "server/http/HttpError.h"
#include "wire/AccessToken.h"

#include <algorithm>

#include <boost/asio/ip/address.hpp>
#include <boost/beast/core/string.hpp>

namespace {

/// The host of "host:port", "[address]:port" or "[address]"; the unchanged text when brackets do not match.
std::string WithoutPort(const std::string& host) {
    const std::size_t bracket = host.starts_with('[') ? host.find(']') : 0;
    if (bracket == 0)
        return host.substr(0, host.find(':'));
    const bool isComplete = bracket + 1 == host.size() || (bracket < host.size() && host[bracket + 1] == ':');
    return isComplete ? host.substr(1, bracket - 1) : host;
}

} // namespace

void AccessRules::Check(const Request& request) const {
    using Field = Request::Field;
    if (request.HasForeignCoding())
        throw HttpError(501, "Only the transfer coding \"chunked\" is supported.");
    const std::size_t hosts = request.Count(Field::host);
    if (hosts > 1 || (hosts == 0 && !request.IsHttp10()))
        throw HttpError(400, "The request must name exactly one host.");
    if (hosts == 1 && !IsHost(request.Value(Field::host)))
        throw HttpError(403, "Unknown host name; see --host-name.");
    if (request.Count(Field::origin) > 0)
        throw HttpError(403, "Web pages have no access.");
    if (!token.empty() && !IsBearerOf(request.Value(Field::authorization), token))
        throw HttpError(401, "The token is missing or wrong.", "WWW-Authenticate", "Bearer");
}

bool AccessRules::IsHost(const std::string& host) const {
    const std::string name = WithoutPort(host);
    boost::system::error_code noAddress;
    boost::asio::ip::make_address(name, noAddress);
    return !noAddress || std::any_of(hostNames.begin(), hostNames.end(), [&](const std::string& known) {
        return boost::beast::iequals(name, known);
    });
}
