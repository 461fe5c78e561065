#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

/// The time zone of the process while it lives: `TimeZone("TST-02:30")` is two and a half hours
/// ahead.
class TimeZone {
 public:
  explicit TimeZone(const char* zone) {
    if (const char* const before = std::getenv("TZ")) before_ = before;
    setenv("TZ", zone, 1);
    tzset();
  }
  ~TimeZone() {
    if (before_) {
      setenv("TZ", before_->c_str(), 1);
    } else {
      unsetenv("TZ");
    }
    tzset();
  }
  TimeZone(const TimeZone&) = delete;
  TimeZone& operator=(const TimeZone&) = delete;

 private:
  std::optional<std::string> before_;
};
