#include "ostrasdk/VeTransaction.h"

#include "basalt/Exception.h"
#include "basalt/bStatus.h"
#include "ostrasdk/HttpExchange.h"

#include <utility>

namespace OstraSdk {

VeTransaction::VeTransaction(HttpRequest request) : request(std::move(request)) {
}

VeRequestResponse VeTransaction::GetResponse(std::int64_t timeout) {
    CheckResponse(timeout);
    return *response;
}

void VeTransaction::CheckResponse(std::int64_t timeout) {
    if (response)
        return;
    if (std::exchange(sent, true))
        throw Ve::Exception(__LINE__, __FILE__, bERROR_PARAMETER, "VeTransaction::CheckResponse",
                            "The request has failed before.");
    response.emplace(HttpExchange(request).Run(std::chrono::microseconds(timeout)));
}

} // namespace OstraSdk
