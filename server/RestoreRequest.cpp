#include "RestoreRequest.h"

#include "RequestError.h"

void RestoreRequest::Run(const BodySpool& body, const ByteRange& archive) const {
    (void)body;
    (void)archive;
    throw RequestError(501, "Restoring is not served yet.");
}
