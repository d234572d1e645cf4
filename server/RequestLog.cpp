#include "server/RequestLog.h"

#include "server/PlainText.h"

#include <cinttypes>
#include <stdexcept>

RequestLog::RequestLog(const std::string& path)
    : file(path.empty() ? stdout : std::fopen(path.c_str(), "ae")) {
    if (file == nullptr)
        throw std::runtime_error("cannot open the log file " + path);
}

RequestLog::~RequestLog() {
    if (file != stdout)
        std::fclose(file);
}

void RequestLog::Note(std::string_view verb, std::string_view path, std::uint64_t bodySize, unsigned status) {
    const std::lock_guard lock(mutex);
    std::fprintf(file, "%s %s %" PRIu64 " %u\n", PlainText(verb).c_str(), PlainText(path).c_str(), bodySize,
                 status);
    std::fflush(file);
}
