#pragma once

/// Lines that the replies of several commands have in common.

#include "TarnFWCmdReply.h"
#include "TarnFWLog.h"

namespace TarnFirewall {

/// A 64-bit number as the printer's formats take it.
inline unsigned long long wide(std::uint64_t value) { return value; }

/// Prints the generation number of a set and when it took effect, each line after `prefix`. The
/// reply has the time, seconds since boot, at `time` and the generation in the 8 bytes after it.
void printRealization(const CTarnFWCmdReply& reply, std::size_t time, const char* prefix,
                      const PrettyPrinting& out);

}  // namespace TarnFirewall
