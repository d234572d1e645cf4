#pragma once

#include "server/handlers/Handler.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct Sensor;

/// Finds the handler of a verb and a path.
class Router final {
  public:
    /// @param sensor outlives this object
    explicit Router(const Sensor& sensor);

    /// @throws HttpError with status 404 for an unknown path, 405 for a verb that the path does not have
    [[nodiscard]] const Handler& Find(std::string_view verb, std::string_view path) const;

  private:
    struct Route {
        std::string verb;
        std::string path;
        std::unique_ptr<Handler> handler;
    };

    std::vector<Route> routes;
};
