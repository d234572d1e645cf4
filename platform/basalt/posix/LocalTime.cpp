#include "basalt/LocalTime.h"

std::optional<std::tm> LocalTime(std::time_t moment) {
    std::tm local{};
    return localtime_r(&moment, &local) == nullptr ? std::nullopt : std::optional(local);
}
