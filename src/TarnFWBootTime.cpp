#include "TarnFWBootTime.h"

#include <sys/sysinfo.h>

#include <algorithm>
#include <climits>

namespace TarnFirewall {

std::time_t bootsec2time(std::uint64_t seconds) {
  struct sysinfo info = {};
  sysinfo(&info);
  // Unsigned, so that whatever the kernel tells wraps around instead of being undefined.
  const std::uint64_t boot =
      static_cast<std::uint64_t>(std::time(nullptr)) - static_cast<std::uint64_t>(info.uptime);
  return static_cast<std::time_t>(boot + seconds);
}

FWLocalTime_ bootsec2local(std::uint64_t seconds) {
  const std::time_t time = bootsec2time(seconds);
  std::tm local{};
  if (localtime_r(&time, &local) == nullptr) local = std::tm{};
  const long year = std::min<long>(local.tm_year + 1900L, INT_MAX);
  return {static_cast<int>(year), local.tm_mon + 1, local.tm_mday,
          local.tm_hour,          local.tm_min,     local.tm_sec};
}

}  // namespace TarnFirewall
