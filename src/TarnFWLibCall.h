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

#include "TarnFWCallFrame.h"
#include "TarnFWLibHandle.h"
#include "TarnFWTypes.h"

namespace TarnFirewall {

/// The frame of a function that works on a handle; `body` gets it as a `CTarnFWLibHandle&`. A null
/// handle gives 2 at once.
template <typename Body>
FWStatus_t callLibrary(const char* function, fwlibhandle_* handle, Body&& body,
                       const char* file = kFlatSource, int line = __builtin_LINE()) {
  traceEntry({function, file, line});
  if (handle == nullptr) return FW_STATUS_INVALID_LIB_HANDLE;
  return callBody(
      function, [&]() -> FWStatus_t { return body(*fromLibHandle(handle)); }, file, line);
}

}  // namespace TarnFirewall
