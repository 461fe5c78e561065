/// Start-up and end of the library.

#include <memory>

#include "TarnFWIOChannelFactory.h"
#include "TarnFWLibCall.h"
#include "TarnFWLibHandle.h"
#include "TarnFWLog.h"
#include "tarnfw.h"

namespace TarnFirewall {

namespace {

constexpr char kVersion[] = "TARNFW 0.3";
constexpr char kBuild[] = TARNFW_BUILD;

/// The attribute tables are constants, so that nothing is left to build here. The step keeps its
/// place in the order of the start-up.
void init_ssl_attribute_maps() {}

}  // namespace

}  // namespace TarnFirewall

using namespace TarnFirewall;

extern "C" {

FWStatus_t FW_Initialize(unsigned int, void* reserved, FWIOType_t type, unsigned int count,
                         const char** items, fwlibhandle_** handle) {
  TARNFW_TRACE(FW_COMPONENT_API, 0, "%s. build # %s.\n", kVersion, kBuild);
  if (handle == nullptr || reserved == nullptr) return FW_STATUS_INVALID_ARGUMENT;
  const char* const function = __func__;
  return callBody(function, [&]() -> FWStatus_t {
    *handle = nullptr;
    std::unique_ptr<CTarnFWLibHandle> library = CTarnFWLibHandle::GetInstance();
    library->setIOChannel(create_io_channel(type, count, items));
    *handle = toLibHandle(library.release());
    init_ssl_attribute_maps();
    TARNFW_TRACE_IN(function, LOG_DEBUG, FW_COMPONENT_API, 0,
                    "Tarn Firewall library is initialized.\n");
    return FW_STATUS_OK;
  });
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
                    "Tarn Firewall library %s has exited.\n", kVersion);
    return FW_STATUS_OK;
  });
}

}  // extern "C"
