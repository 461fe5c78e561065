#pragma once

/// Security identifiers of users and groups: from the kernel's record to the "S-1-..." text and
/// back.

#include <cstddef>

#include "TarnFWIdentityRecords.h"

namespace TarnFirewall {

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
