#pragma once

/// What every public function does around its own work: trace, and exceptions as statuses.
///
/// Entry and exit are traced when the level of `api` is above 0. An exception of the library gives
/// its code, anything else 5, each with a warning line that does not depend on the level. Nothing
/// passes the frame.

#include <utility>

#include "TarnFWLog.h"
#include "TarnFWTypes.h"

namespace TarnFirewall {

/// The source that the lines of flat functions name, whichever file a function stands in: scripts
/// that read the log match it.
inline constexpr char kFlatSource[] = "TarnFWLibMain";

/// Where a function stands, for its log lines.
struct FWCallPlace {
  const char* function;
  const char* file;  // path; cut to the bare name when a line is written
  int line;
};

void logEntry(const FWCallPlace& place);
void logExit(const FWCallPlace& place, FWStatus_t status);

inline void traceEntry(const FWCallPlace& place) {
  if (verboseLevel(FW_COMPONENT_API) > 0) logEntry(place);
}
inline void traceExit(const FWCallPlace& place, FWStatus_t status) {
  if (verboseLevel(FW_COMPONENT_API) > 0) logExit(place, status);
}

/// Status of the exception that is being handled, after its warning line. `named` puts the
/// function's name in front of the text, where the line of an internal error always has it.
FWStatus_t statusOfException(const FWCallPlace& place, bool named = false);

/// The frame without its entry line, for a function that logs an entry of its own.
template <typename Body>
FWStatus_t callBody(const char* function, Body&& body, const char* file = kFlatSource,
                    int line = __builtin_LINE()) {
  const FWCallPlace place{function, file, line};
  FWStatus_t status = FW_STATUS_OK;
  try {
    status = body();
  } catch (...) {
    status = statusOfException(place);
  }
  traceExit(place, status);
  return status;
}

/// The frame without a handle, for functions that take none.
template <typename Body>
FWStatus_t callFrame(const char* function, Body&& body, const char* file = kFlatSource,
                     int line = __builtin_LINE()) {
  traceEntry({function, file, line});
  return callBody(function, std::forward<Body>(body), file, line);
}

}  // namespace TarnFirewall
