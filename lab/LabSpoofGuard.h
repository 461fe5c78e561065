// The spoof guard of a filter.
#ifndef TARNLAB_SPOOF_GUARD_H
#define TARNLAB_SPOOF_GUARD_H

#include <string>

#include "LabHost.h"

namespace TarnLab {

/// The guard as the kernel answers it: a head of 12 bytes, and the addresses that it allows.
ByteVector spoofGuardOf(const Store& store, const Host& host, std::size_t index);

/// Such a guard as text: its MAC address, and a line without an end for each address.
std::string spoofGuardText(ConstBytes record);

}  // namespace TarnLab

#endif
