#define TARNFW_SOURCE "TarnFWLibMain.cpp"

#include "TarnFWLibHandleStart.h"

#include <memory>

#include "TarnFWCallFrame.h"
#include "TarnFWIOChannelFactory.h"
#include "TarnFWLibHandle.h"
#include "TarnFWLog.h"

namespace TarnFirewall {

namespace {

/// The public function, whose name the log lines carry.
constexpr char kFunction[] = "FW_Initialize";

/// The attribute tables are constants, so that nothing is left to build here. The step keeps its
/// place in the order of the start-up.
void init_ssl_attribute_maps() {}

}  // namespace

FWStatus_t initializeLibrary(FWIOType_t type, unsigned int count, const char** items,
                             fwlibhandle_** handle) {
  TARNFW_TRACE_IN(kFunction, LOG_DEBUG, FW_COMPONENT_API, 0, "%s. build # %s.\n", kLibVersion,
                  TARNFW_BUILD);
  if (handle == nullptr) return FW_STATUS_INVALID_ARGUMENT;
  return callBody(kFunction, [&]() -> FWStatus_t {
    *handle = nullptr;
    std::unique_ptr<CTarnFWLibHandle> library = CTarnFWLibHandle::GetInstance();
    library->setIOChannel(create_io_channel(type, count, items));
    *handle = toLibHandle(library.release());
    init_ssl_attribute_maps();
    TARNFW_TRACE_IN(kFunction, LOG_DEBUG, FW_COMPONENT_API, 0,
                    "Tarn Firewall library is initialized.\n");
    return FW_STATUS_OK;
  });
}

}  // namespace TarnFirewall
