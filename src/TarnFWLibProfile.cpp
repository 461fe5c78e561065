// The flat functions for what a filter learns of names and of layer 7.

#include "TarnFWCmdConfigL7CopyMode.h"
#include "TarnFWCmdGetDnsConfigProfile.h"
#include "TarnFWCmdRun.h"
#include "TarnFWCmdSetDnsConfigProfile.h"
#include "tarnfw.h"

using namespace TarnFirewall;

extern "C" {

FWStatus_t FW_SetDnsConfigProfile(fwlibhandle_* handle, const dvs_port_* port, unsigned int mode,
                                  unsigned int timeToLive) {
  return runCommand<CTarnFWCmdSetDnsConfigProfile>({__func__, handle, port, nullptr}, mode,
                                                   timeToLive);
}

FWStatus_t FW_GetDnsConfigProfile(fwlibhandle_* handle, const dvs_port_* port) {
  return runCommand<CTarnFWCmdGetDnsConfigProfile>({__func__, handle, port, nullptr});
}

FWStatus_t FW_SetL7CopyMode(fwlibhandle_* handle, const dvs_port_* port, unsigned int mode) {
  return runCommand<CTarnFWCmdConfigL7CopyMode>({__func__, handle, port, nullptr}, mode != 0);
}

}  // extern "C"
