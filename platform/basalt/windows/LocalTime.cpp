#include "basalt/SystemCalls.h"

std::optional<std::tm> LocalTime(std::time_t moment) {
    std::tm local{};
    return localtime_s(&local, &moment) != 0 ? std::nullopt : std::optional(local);
}
