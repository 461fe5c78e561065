#pragma once

#include "TarnFWTypes.h"

namespace TarnFirewall {

/// Text of a status. For a status that has none it stands in a buffer of the calling thread, which
/// the thread's next such call overwrites.
const char* statusText(FWStatus_t status);

}  // namespace TarnFirewall
