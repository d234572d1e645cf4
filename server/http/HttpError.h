#pragma once

#include <stdexcept>
#include <string>
#include <utility>

/// A request that is answered with a failure: the status, and a text for people.
class HttpError final : public std::runtime_error {
  public:
    /// @param field,value what the reply's head says beside it, such as "Allow" with status 405
    HttpError(unsigned status, const std::string& text, std::string field = {}, std::string value = {})
        : std::runtime_error(text), status(status), field(std::move(field)), value(std::move(value)) {}

    [[nodiscard]] unsigned Status() const { return status; }
    /// Empty for no further field.
    [[nodiscard]] const std::string& Field() const { return field; }
    [[nodiscard]] const std::string& Value() const { return value; }

  private:
    unsigned status;
    std::string field;
    std::string value;
};
