#include "HandlerCommon.h"
#include "Handlers.h"

/// Commands that this build does not have yet, by family. Each stands in the table under its final
/// handler, so that a handler that arrives only takes its line out of here.

namespace {

int unavailable(const char* cmd) {
  return error("ERROR: command %s is not available in this build.\n", cmd);
}

}  // namespace

#define UNAVAILABLE(handler) \
  int handler(const char* cmd, int, char**) { return unavailable(cmd); }


// trace and inspection
UNAVAILABLE(GetVDPIInfo)
UNAVAILABLE(TraceHulld)
UNAVAILABLE(TraceTarn)

#undef UNAVAILABLE
