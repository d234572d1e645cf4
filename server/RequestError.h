#pragma once

#include <stdexcept>
#include <string>
#include <utility>

/// A request that is answered with a failure: the status, and a text for people.
class RequestError final : public std::runtime_error {
  public:
    /// @param allowedVerbs with status 405, the verbs that the path takes, separated by commas
    RequestError(unsigned status, const std::string& text, std::string allowedVerbs = {})
        : std::runtime_error(text), status(status), allowedVerbs(std::move(allowedVerbs)) {}

    [[nodiscard]] unsigned Status() const { return status; }
    [[nodiscard]] const std::string& AllowedVerbs() const { return allowedVerbs; }

  private:
    unsigned status;
    std::string allowedVerbs;
};
