#pragma once

/// Parsers of component names and of lists of ethertypes and protocols.

#include <cstdint>

/// A number below 64 or 255, "all" for 255, or a name of the list, ignoring case. A number need not
/// be below `count`.
bool ParseCompString(const char* text, unsigned int* component, const char* const* names,
                     unsigned int count);

/// Up to `maximum` ethertypes in network order; further ones are ignored. Separated by ",", blank
/// or tab.
bool ParseEtherTypeString(const char* text, std::uint16_t* types, unsigned int maximum,
                          unsigned int* count);

/// Up to `maximum` IP protocols, by the host's names or by number. The names are those of the first
/// call in a process; `std::bad_alloc` when there is no memory for them.
bool ParseProtocolString(const char* text, std::uint8_t* protocols, unsigned int maximum,
                         unsigned int* count);
