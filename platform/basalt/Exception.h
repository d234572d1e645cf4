#pragma once

#include <exception>
#include <string>
#include <system_error>

namespace Ve {

/// The one exception type of the program outside the converters: a status, a message and where it was thrown.
/// It is a plain value: it is copied into queued signals and crosses threads. Status 1 means success, so that
/// a value made from the status alone is the result of successful work.
class Exception : public std::exception {
  public:
    /// Success.
    Exception() = default;

    /// A result without a message.
    explicit Exception(int status);

    /// @param line,file,function where the failure is reported from
    /// @param status a value that bStatus_Name can name
    /// @param format printf-like; text that comes from outside (a path, an address, a server's words) is
    /// always an
    ///        argument of it and never the format itself
    Exception(int line, const char* file, int status, const char* function, const char* format, ...)
        __attribute__((format(printf, 6, 7)));

    /// The same with the reason: what the system said, or where and what in the data was wrong. It is for the
    /// log; the message does not include it.
    [[nodiscard]] Exception Because(const std::string& why) const;
    [[nodiscard]] Exception Because(std::error_code why) const;
    /// Empty when none is known.
    [[nodiscard]] const std::string& Reason() const noexcept { return reason; }
    /// The system's own error; none when the failure is not the system's.
    [[nodiscard]] std::error_code Cause() const noexcept { return cause; }

    [[nodiscard]] int Status() const noexcept { return status; }
    [[nodiscard]] int Line() const noexcept { return line; }
    [[nodiscard]] const std::string& File() const noexcept { return file; }
    [[nodiscard]] const std::string& Function() const noexcept { return function; }
    /// The message alone; empty for a result without one.
    [[nodiscard]] const char* what() const noexcept override { return message.c_str(); }

  private:
    int status = 1;
    int line = 0;
    std::string file;
    std::string function;
    std::string message;
    std::string reason;
    std::error_code cause;
};

} // namespace Ve
