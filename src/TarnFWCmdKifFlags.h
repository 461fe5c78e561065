#pragma once

/// The record of an interface's flags, which two commands share.

#include "TarnFWTypes.h"

namespace TarnFirewall {

inline constexpr unsigned int kKifFlags = 32;

/// Flags of an interface (kif) of the kernel's firewall. An empty name is no flag.
struct FWKifFlags_ {
  host32 mask;                     //    +0  the flags as bits
  char names[kKifFlags][40];       //    +4  text
  std::uint8_t values[kKifFlags];  // +1284
};
static_assert(sizeof(FWKifFlags_) == 1316 && alignof(FWKifFlags_) == 1);
static_assert(offsetof(FWKifFlags_, mask) == 0 && offsetof(FWKifFlags_, names) == 4 &&
              offsetof(FWKifFlags_, values) == 1284);

}  // namespace TarnFirewall
