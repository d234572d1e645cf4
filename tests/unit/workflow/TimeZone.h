#pragma once

#include <cstdlib>
#include <ctime>

/// The process's time zone while the object lives.
class TimeZone {
  public:
    /// @param zone as the variable TZ has it: "Place-2" is two hours east
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
