#pragma once

#include "cinder/TarName.h"

#include <cstdint>
#include <cstdio>
#include <mutex>
#include <string>
#include <string_view>

/// Text from outside made fit for a log line or an error: printable ASCII as it is, every other byte as "?",
/// cut at 200 characters.
std::string PlainText(std::string_view text);

/// Notes each request in one line, "verb path body-size status", flushed at once: written when the outcome is
/// decided and before the reply goes out, so that whoever has the reply finds the line. Safe to use from
/// several threads.
class RequestLog final {
  public:
    /// @param path the file to append to; empty for standard output
    /// @throws std::runtime_error when the file cannot be opened
    explicit RequestLog(const std::string& path);
    RequestLog(const RequestLog&) = delete;
    RequestLog& operator=(const RequestLog&) = delete;
    ~RequestLog();

    /// @param verb,path as the client sent them, "-" where they never came; unprintable bytes are shown as
    /// "?"
    /// @param bodySize bytes of the body that were read
    void Note(std::string_view verb, std::string_view path, std::uint64_t bodySize, unsigned status);

    /// Notes what is of interest beside a request, in a line that begins with "#".
    void NoteRemark(const std::string& remark);
    /// Notes links and special files that a request did not carry, in a line that begins with "#"; nothing
    /// when there are none.
    void NoteLeftOut(std::string_view what, const LeftOut& leftOut);

  private:
    std::mutex mutex;
    std::FILE* file;
};
