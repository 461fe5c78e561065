#pragma once

/// Timeouts by name and by number.

#include <cstdint>

#include "TarnFWSettingsRecords.h"

namespace TarnFirewall {

/// A cleared record with one value that is marked. Throws `CInvalidTimeoutException` for a name
/// that no timeout has, and for a number of 22 or above.
FWInstTimeout_ oneTimeout(const char* name, std::uint32_t value);
FWInstTimeout_ oneTimeout(unsigned int id, std::uint32_t value);

}  // namespace TarnFirewall
