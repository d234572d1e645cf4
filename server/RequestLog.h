#pragma once

#include "cinder/TarName.h"

#include <cstdint>
#include <cstdio>
#include <mutex>
#include <string>
#include <string_view>

/// Makes text from outside safe for a log line or an error message: bytes other than printable ASCII become
/// "?", and it is cut at 200 characters.
std::string PlainText(std::string_view text);

/// Logs each request in one line, "verb path body-size status". The line is flushed before the reply is sent,
/// so a client that has the reply finds it. Thread-safe.
class RequestLog final {
  public:
    /// @param path the file to append to; empty for standard output
    /// @throws std::runtime_error when the file cannot be opened
    explicit RequestLog(const std::string& path);
    RequestLog(const RequestLog&) = delete;
    RequestLog& operator=(const RequestLog&) = delete;
    ~RequestLog();

    /// @param verb,path as the client sent them, made safe by PlainText, a first "#" of the verb likewise;
    /// "-" where they never arrived
    /// @param bodySize bytes of the body that were read
    void Note(std::string_view verb, std::string_view path, std::uint64_t bodySize, unsigned status);

    /// Logs a remark, in a line that begins with "#".
    void NoteRemark(const std::string& remark);
    /// Logs the links and special files that a request left out, in a line that begins with "#"; nothing when
    /// there are none.
    void NoteLeftOut(std::string_view what, const LeftOut& leftOut);

  private:
    std::mutex mutex;
    std::FILE* file;
};
