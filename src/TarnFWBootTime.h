#pragma once

/// The kernel counts seconds since boot; what users read is wall-clock time.

#include <cstdint>
#include <ctime>

namespace TarnFirewall {

/// Wall-clock time of a moment that lies `seconds` after the host's boot. The same moment gives the
/// same time at every call and in every process, until the host's clock is set.
std::time_t bootsec2time(std::uint64_t seconds);

/// Local time as texts show it: the year in full, the month from 1.
struct FWLocalTime_ {
  int year;
  int month;
  int day;
  int hour;
  int minute;
  int second;
};

/// A time in local time. One beyond the calendar gives the year 1900, month 1, day 0.
FWLocalTime_ localTimeOf(std::time_t time);

/// `bootsec2time` in local time.
FWLocalTime_ bootsec2local(std::uint64_t seconds);

}  // namespace TarnFirewall
