#pragma once

#include <stdexcept>
#include <string>

/// A request that is answered with a failure: the status, and a text for people.
class RequestError final : public std::runtime_error {
  public:
    RequestError(unsigned status, const std::string& text) : std::runtime_error(text), status(status) {}

    [[nodiscard]] unsigned Status() const { return status; }

  private:
    unsigned status;
};
