#pragma once

/// Security identifiers of users and groups: the kernel's record and the "S-1-..." text.

#include <cstddef>
#include <cstdint>

#include "TarnFWWire.h"

namespace TarnFirewall {

inline constexpr std::size_t kSidSubAuthorities = 15;

/// One security identifier as the kernel holds it.
struct fwattr_sid {
  host32 reserved;                            //  +0  0
  std::uint8_t revision;                      //  +4  1
  std::uint8_t count;                         //  +5  sub-authorities in use, at most 15
  std::uint8_t authority[6];                  //  +6  48 bits, highest byte first
  host32 subAuthorities[kSidSubAuthorities];  // +12
};
static_assert(sizeof(fwattr_sid) == 72 && alignof(fwattr_sid) == 1);
static_assert(offsetof(fwattr_sid, reserved) == 0 && offsetof(fwattr_sid, revision) == 4 &&
              offsetof(fwattr_sid, count) == 5 && offsetof(fwattr_sid, authority) == 6 &&
              offsetof(fwattr_sid, subAuthorities) == 12);

/// Longest text of a record with its NUL: "S-1-", 15 digits, and 15 times "-" and 10 digits.
inline constexpr std::size_t kSidTextSize = 4 + 15 + kSidSubAuthorities * 11 + 1;

/// Reads "S-1-AUTHORITY-SUB-SUB...", the S in any case. `sid` is cleared first; what it holds after
/// a failure is not to be used. False for a null argument, another revision, an authority of more
/// than 48 bits, a field without a number, a sub-authority of more than 32 bits and a sixteenth
/// one.
bool sid_str2bin(const char* text, fwattr_sid* sid);

/// Writes the text with its NUL. The buffer is cleared first. False for a null argument, a revision
/// other than 1, a count above 15 and a text that does not fit.
bool sid_bin2str(const fwattr_sid* sid, char* buffer, std::size_t size);

}  // namespace TarnFirewall
