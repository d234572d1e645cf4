#pragma once

#include <cstdlib>
#include <ctime>
#include <string>

/// A fixed time of the tests, and the start of a kept copy's name at it.
inline constexpr std::time_t kTime = 1795356192; ///< 2026-11-22 14:03:12 in UTC
inline const std::string kStamp = "2026-11-22 14.03.12 ";

/// The process's time zone while the object lives.
class TimeZone {
  public:
    /// @param zone a value of the variable TZ: "Place-2" is two hours east
    explicit TimeZone(const char* zone) { Set(zone); }
    TimeZone(const TimeZone&) = delete;
    TimeZone& operator=(const TimeZone&) = delete;
    ~TimeZone() { Set("UTC0"); }

  private:
    static void Set(const char* zone) {
        setenv("TZ", zone, 1);
        tzset();
    }
};
