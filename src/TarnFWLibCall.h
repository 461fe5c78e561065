#pragma once

/// The one frame that every flat function stands in: trace, null handle, exceptions.
///
///     FWStatus_t FW_Something(fwlibhandle_* handle, ...) {
///       return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) {
///         if (result == nullptr) return FW_STATUS_INVALID_ARGUMENT;
///         ...
///         return status;
///       });
///     }
///
/// Entry and exit are traced when the level of `api` is above 0. A null handle gives 2 at once. An
/// exception of the library gives its code, anything else 5, each with a warning line that does not
/// depend on the level. Nothing passes the frame.

#include <utility>

#include "TarnFWLibHandle.h"
#include "TarnFWTypes.h"

namespace TarnFirewall {

/// Where a flat function stands, for its log lines.
struct FWCallPlace {
  const char* function;
  const char* file;  // path; cut to the bare name when a line is written
  int line;
};

void traceEntry(const FWCallPlace& place);
void traceExit(const FWCallPlace& place, FWStatus_t status);

/// Status of the exception that is being handled, after its warning line. `named` puts the
/// function's name in front of the text, where the line of an internal error always has it.
FWStatus_t statusOfException(const FWCallPlace& place, bool named = false);

/// The frame from behind its entry line, for a function that logs an entry of its own.
template <typename Body>
FWStatus_t callBody(const char* function, Body&& body, const char* file = __builtin_FILE(),
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
FWStatus_t callFrame(const char* function, Body&& body, const char* file = __builtin_FILE(),
                     int line = __builtin_LINE()) {
  traceEntry({function, file, line});
  return callBody(function, std::forward<Body>(body), file, line);
}

/// The frame of a function that works on a handle; `body` gets it as a `CTarnFWLibHandle&`.
template <typename Body>
FWStatus_t callLibrary(const char* function, fwlibhandle_* handle, Body&& body,
                       const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
  traceEntry({function, file, line});
  if (handle == nullptr) return FW_STATUS_INVALID_LIB_HANDLE;
  return callBody(
      function, [&]() -> FWStatus_t { return body(*fromLibHandle(handle)); }, file, line);
}

}  // namespace TarnFirewall
