#include "document/formats/Guarded.h"

#include "log/Log.h"

void LogException(const char* tag, const char* text) noexcept {
    try {
        LOG_LINE(ERROR) << tag << text;
    } catch (...) { // NOLINT(bugprone-empty-catch): see the header
    }
}
