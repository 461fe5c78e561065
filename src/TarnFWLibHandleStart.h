#pragma once

#include "TarnFWTypes.h"

namespace TarnFirewall {

/// The library's version, as the log shows it.
inline constexpr char kLibVersion[] = "TARNFW 0.3";

/// Makes a library handle on the channel that `items` describe, as `FW_Initialize` does for callers
/// outside. 3 for a null `handle`, 10 when type, count or keys do not fit, else the status of what
/// failed; `*handle` is null then.
FWStatus_t initializeLibrary(FWIOType_t type, unsigned int count, const char** items,
                             fwlibhandle_** handle);

}  // namespace TarnFirewall
