#include "server/RequestLog.h"

#include "basalt/SystemCalls.h"

#include <algorithm>
#include <cinttypes>
#include <stdexcept>

std::string PlainText(std::string_view text) {
    constexpr std::size_t kMaxSize = 200;
    std::string plain(text.substr(0, kMaxSize));
    std::replace_if(
        plain.begin(), plain.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return plain;
}

RequestLog::RequestLog(const std::string& path) : file(path.empty() ? stdout : OpenToAppend(path)) {
    if (file == nullptr)
        throw std::runtime_error("cannot open the log file " + path);
}

RequestLog::~RequestLog() {
    if (file != stdout)
        std::fclose(file);
}

void RequestLog::Note(std::string_view verb, std::string_view path, std::uint64_t bodySize, unsigned status) {
    std::string plainVerb = PlainText(verb);
    if (plainVerb.starts_with('#')) // HTTP allows it, but the line would look like a remark
        plainVerb.front() = '?';
    const std::lock_guard lock(mutex);
    std::fprintf(file, "%s %s %" PRIu64 " %u\n", plainVerb.c_str(), PlainText(path).c_str(), bodySize,
                 status);
    std::fflush(file);
}

void RequestLog::NoteLeftOut(std::string_view what, const LeftOut& leftOut) {
    if (leftOut.count == 0)
        return;
    std::string names;
    for (const std::string& name : leftOut.names)
        names += (names.empty() ? "" : ", ") + PlainText(name);
    if (leftOut.count > static_cast<std::int64_t>(leftOut.names.size()))
        names += ", ...";
    NoteRemark(std::string(what) + ": " + std::to_string(leftOut.count) + " links and special files (" +
               names + ")");
}

void RequestLog::NoteRemark(const std::string& remark) {
    const std::lock_guard lock(mutex);
    std::fprintf(file, "# %s\n", remark.c_str());
    std::fflush(file);
}
