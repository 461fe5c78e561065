/// Start-up and end of the library, and the texts of statuses.

#include "TarnFWLibCall.h"
#include "TarnFWLibHandle.h"
#include "TarnFWLibHandleStart.h"
#include "TarnFWLog.h"
#include "TarnFWStatus.h"
#include "tarnfw.h"

using namespace TarnFirewall;

extern "C" {

const char* FW_StatusToString(unsigned int status) { return statusText(status); }

FWStatus_t FW_Initialize(unsigned int, void* reserved, FWIOType_t type, unsigned int count,
                         const char** items, fwlibhandle_** handle) {
  // Refused as a missing handle is, after the entry has been logged.
  return initializeLibrary(type, count, items, reserved != nullptr ? handle : nullptr);
}

fwlibhandle_* FW_GetDefaultLibHandle() {
  TARNFW_TRACE(FW_COMPONENT_API, 0, "%s.\n", __func__);
  try {
    fwlibhandle_* handle = toLibHandle(CTarnFWLibHandle::GetIoctlInstance());
    TARNFW_TRACE(FW_COMPONENT_API, 0, "Tarn Firewall library is initialized.\n");
    return handle;
  } catch (...) {
    TARNFW_WARNING("%s: encountered internal error\n", __func__);
    return nullptr;
  }
}

FWStatus_t FW_Exit(fwlibhandle_* handle) {
  const char* const function = __func__;
  return callFrame(function, [&]() -> FWStatus_t {
    if (handle == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    CTarnFWLibHandle* library = fromLibHandle(handle);
    if (library == CTarnFWLibHandle::GetIoctlInstance()) {
      TARNFW_TRACE_IN(function, LOG_DEBUG, FW_COMPONENT_API, 0,
                      "Not delete the lib handle since it's the global default one.\n");
    } else {
      delete library;
    }
    TARNFW_TRACE_IN(function, LOG_DEBUG, FW_COMPONENT_API, 0,
                    "Tarn Firewall library %s has exited.\n", kLibVersion);
    return FW_STATUS_OK;
  });
}

}  // extern "C"
