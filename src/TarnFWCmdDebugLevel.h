#pragma once

/// What the commands that set the kernel's verbosity have in common.

#include <array>
#include <cstdint>
#include <string>

namespace TarnFirewall {

/// Body of such a command:  +0  3 bytes  component, lowest byte first
///                          +3           level in the low four bits
using FWDebugLevel = std::array<std::uint8_t, 4>;

/// Throws `CUnsupportedException` for a component that is not known, then for a level above 15.
FWDebugLevel debugLevel(unsigned int component, unsigned int level, bool known);

unsigned int debugComponent(const FWDebugLevel& body);

/// "debug NAME LEVEL".
std::string debugStatement(const char* name, const FWDebugLevel& body);

}  // namespace TarnFirewall
