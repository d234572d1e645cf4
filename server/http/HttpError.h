#pragma once

#include <stdexcept>
#include <string>
#include <utility>

/// Makes the server answer a request with an error status and a readable text.
class HttpError final : public std::runtime_error {
  public:
    /// @param field,value an additional header field of the reply, such as "Allow" for status 405
    HttpError(unsigned status, const std::string& text, std::string field = {}, std::string value = {})
        : std::runtime_error(text), status(status), field(std::move(field)), value(std::move(value)) {}

    [[nodiscard]] unsigned Status() const { return status; }
    /// The name of the additional header field; empty for none.
    [[nodiscard]] const std::string& Field() const { return field; }
    [[nodiscard]] const std::string& Value() const { return value; }

  private:
    unsigned status;
    std::string field;
    std::string value;
};
