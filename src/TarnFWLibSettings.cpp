// The flat functions for settings of a filter.

#include "TarnFWCmdGetFailPolicy.h"
#include "TarnFWCmdRun.h"
#include "TarnFWCmdSetFailPolicy.h"
#include "tarnfw.h"

using namespace TarnFirewall;

extern "C" {

FWStatus_t FW_SetFailPolicy(fwlibhandle_* handle, const dvs_port_* port, void* context,
                            FWFailPolicy_t policy) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) {
    CTarnFWCmdSetFailPolicy command(port, policy);
    return run(library, command, context);
  });
}

FWStatus_t FW_GetFailPolicy(fwlibhandle_* handle, const dvs_port_* port, void* context,
                            FWFailPolicy_t* policy) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (policy == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    CTarnFWCmdGetFailPolicy command(port);
    return run(library, command, context, [&](const CTarnFWCmdReply& reply) {
      *policy = CTarnFWCmdGetFailPolicy::policy(reply);
    });
  });
}

}  // extern "C"
