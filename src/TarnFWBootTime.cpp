#include "TarnFWBootTime.h"

#include <time.h>

#include <algorithm>
#include <climits>
#include <limits>

namespace TarnFirewall {

namespace {

/// Nanoseconds of a clock; whatever it says wraps around instead of being undefined.
std::uint64_t nanoseconds(clockid_t clock) {
  timespec now = {};
  clock_gettime(clock, &now);
  return static_cast<std::uint64_t>(now.tv_sec) * 1'000'000'000u +
         static_cast<std::uint64_t>(now.tv_nsec);
}

/// When the host was started. The clocks of `time` and of `sysinfo` are subtracted
/// before they are cut to seconds: cut first, they do not turn to the next second together, and the
/// difference would be another one in a part of each second. What passes between the two readings
/// makes the difference smaller, so the largest of a few is the one of the closest pair: a start
/// just after a full second is not taken for one before it when a single reading is interrupted.
std::uint64_t bootTime() {
  auto boot = std::numeric_limits<std::int64_t>::min();
  for (int pair = 0; pair < 4; ++pair) {
    const std::uint64_t now = nanoseconds(CLOCK_REALTIME);
    boot = std::max(boot, static_cast<std::int64_t>(now - nanoseconds(CLOCK_BOOTTIME)));
  }
  constexpr std::int64_t second = 1'000'000'000;
  return static_cast<std::uint64_t>((boot - (boot < 0 ? second - 1 : 0)) / second);
}

}  // namespace

std::time_t bootsec2time(std::uint64_t seconds) {
  return static_cast<std::time_t>(bootTime() + seconds);
}

FWLocalTime_ bootsec2local(std::uint64_t seconds) { return localTimeOf(bootsec2time(seconds)); }

FWLocalTime_ localTimeOf(std::time_t time) {
  std::tm local{};
  if (localtime_r(&time, &local) == nullptr) local = std::tm{};
  const long year = std::min<long>(local.tm_year + 1900L, INT_MAX);
  return {static_cast<int>(year), local.tm_mon + 1, local.tm_mday,
          local.tm_hour,          local.tm_min,     local.tm_sec};
}

}  // namespace TarnFirewall
