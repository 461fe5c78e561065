// The flat functions for settings of a filter.

#include <algorithm>
#include <optional>

#include "TarnFWAddressListFactory.h"
#include "TarnFWCmdCheckSpoofGuard.h"
#include "TarnFWCmdClearKifStat.h"
#include "TarnFWCmdConfigICMPErrPktDrop.h"
#include "TarnFWCmdCreateSpoofGuard.h"
#include "TarnFWCmdDebugComponent.h"
#include "TarnFWCmdDebugStatus.h"
#include "TarnFWCmdDeleteSpoofGuard.h"
#include "TarnFWCmdEnableVerbose.h"
#include "TarnFWCmdGetFailPolicy.h"
#include "TarnFWCmdGetFloodStat.h"
#include "TarnFWCmdGetKifFlags.h"
#include "TarnFWCmdGetKifStat.h"
#include "TarnFWCmdGetSkifferExportver.h"
#include "TarnFWCmdGetSpoofGuardStat.h"
#include "TarnFWCmdGetTimeout.h"
#include "TarnFWCmdKifFp.h"
#include "TarnFWCmdRun.h"
#include "TarnFWCmdSetFailPolicy.h"
#include "TarnFWCmdSetFloodCfg.h"
#include "TarnFWCmdSetKifFlags.h"
#include "TarnFWCmdSetSkifferExportver.h"
#include "TarnFWCmdSetTimeout.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

CTarnFWAddressEther etherOf(const std::uint8_t* mac) {
  return CTarnFWAddressEther(loadRecord<fw_ether_>(mac), false);
}

}  // namespace

extern "C" {

FWStatus_t FW_SetFailPolicy(fwlibhandle_* handle, const dvs_port_* port, void* context,
                            FWFailPolicy_t policy) {
  return runCommand<CTarnFWCmdSetFailPolicy>({__func__, handle, port, context}, policy);
}

FWStatus_t FW_GetFailPolicy(fwlibhandle_* handle, const dvs_port_* port, void* context,
                            FWFailPolicy_t* policy) {
  return runAndRead<CTarnFWCmdGetFailPolicy>(
      {__func__, handle, port, context}, {policy},
      [&](auto& command, auto& reply) { *policy = command.policy(reply); });
}

FWStatus_t FW_EnableVerboseLog(fwlibhandle_* handle, const dvs_port_* port, void* context,
                               unsigned int component, unsigned int level) {
  return runCommand<CTarnFWCmdEnableVerbose>({__func__, handle, port, context}, component, level);
}

FWStatus_t FW_DebugComponent(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             unsigned int component, unsigned int level) {
  return runCommand<CTarnFWCmdDebugComponent>({__func__, handle, port, context}, component, level);
}

FWStatus_t FW_DebugStatus(fwlibhandle_* handle, const dvs_port_* port, void* context) {
  return runCommand<CTarnFWCmdDebugStatus>({__func__, handle, port, context});
}

FWStatus_t FW_SetTimeout(fwlibhandle_* handle, const dvs_port_* port, void* context,
                         const FWInstTimeout_* timeouts) {
  return runCommand<CTarnFWCmdSetTimeout>({__func__, handle, port, context}, timeouts);
}

FWStatus_t FW_GetTimeout(fwlibhandle_* handle, const dvs_port_* port, void* context,
                         FWInstTimeout_* timeouts) {
  return runAndRead<CTarnFWCmdGetTimeout>(
      {__func__, handle, port, context}, {timeouts},
      [&](auto& command, auto& reply) { *timeouts = command.answer(reply); }, timeouts);
}

FWStatus_t FW_SetFloodCfg(fwlibhandle_* handle, const dvs_port_* port, void* context,
                          const FWFloodCfg_* configuration) {
  return runCommand<CTarnFWCmdSetFloodCfg>({__func__, handle, port, context}, configuration);
}

FWStatus_t FW_GetFloodStat(fwlibhandle_* handle, const dvs_port_* port, void* context,
                           FWFloodStat_* stat) {
  return runAndRead<CTarnFWCmdGetFloodStat>(
      {__func__, handle, port, context}, {stat},
      [&](auto& command, auto& reply) { *stat = command.stat(reply); }, stat);
}

FWStatus_t FW_SetSkifferExportver(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                  unsigned int version) {
  return runCommand<CTarnFWCmdSetSkifferExportver>({__func__, handle, port, context}, version);
}

FWStatus_t FW_GetSkifferExportver(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                  unsigned int* version) {
  return runAndRead<CTarnFWCmdGetSkifferExportver>(
      {__func__, handle, port, context}, {version},
      [&](auto& command, auto& reply) { *version = command.version(reply); });
}

FWStatus_t FW_ConfigICMPErrPktDrop(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                   int enable) {
  return runCommand<CTarnFWCmdConfigICMPErrPktDrop>({__func__, handle, port, context}, enable);
}

FWStatus_t FW_CreateSpoofGuard(fwlibhandle_* handle, const dvs_port_* port, void* context,
                               const FWAddress_* addresses, unsigned int count,
                               const std::uint8_t* mac) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if ((addresses == nullptr && count != 0) || mac == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    auto list = std::make_unique<CTarnFWAddressList>(false);
    CTarnFWAddressListFactory::append(*list, addresses, count);
    CTarnFWCmdCreateSpoofGuard command(port, std::move(list), etherOf(mac));
    return run(library, command, context);
  });
}

FWStatus_t FW_DeleteSpoofGuard(fwlibhandle_* handle, const dvs_port_* port, void* context,
                               const std::uint8_t* mac) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) {
    std::optional<CTarnFWAddressEther> address;
    if (mac != nullptr) address = etherOf(mac);
    CTarnFWCmdDeleteSpoofGuard command(port, address ? &*address : nullptr);
    return run(library, command, context);
  });
}

FWStatus_t FW_CheckSpoofGuard(fwlibhandle_* handle, const dvs_port_* port, void* context,
                              unsigned int* enabled, std::uint8_t* mac, unsigned int* count,
                              FWAddress_* addresses) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (enabled == nullptr || mac == nullptr || count == nullptr ||
        (addresses == nullptr && *count != 0)) {
      return FW_STATUS_INVALID_ARGUMENT;
    }
    CTarnFWCmdCheckSpoofGuard command(port);
    return run(library, command, context, [&](const CTarnFWCmdReply& reply) {
      const CTarnFWReplyRecords<FWAddress_> guarded = command.addresses(reply);
      *enabled = command.enabled(reply) ? 1 : 0;
      storeRecord(mac, command.mac(reply));
      for (unsigned int i = 0; i < std::min(*count, guarded.size()); ++i) addresses[i] = guarded[i];
      *count = guarded.size();
    });
  });
}

FWStatus_t FW_GetSpoofGuardStat(fwlibhandle_* handle, const dvs_port_* port, void* context) {
  return runCommand<CTarnFWCmdGetSpoofGuardStat>({__func__, handle, port, context});
}

FWStatus_t FW_GetKifStat(fwlibhandle_* handle, const dvs_port_* port, void* context) {
  return runCommand<CTarnFWCmdGetKifStat>({__func__, handle, port, context});
}

FWStatus_t FW_ClearKifStat(fwlibhandle_* handle, const dvs_port_* port, void* context) {
  return runCommand<CTarnFWCmdClearKifStat>({__func__, handle, port, context});
}

FWStatus_t FW_FpFlag(fwlibhandle_* handle, const dvs_port_* port, void* context,
                     unsigned int* value, unsigned int mode) {
  return runAndRead<CTarnFWCmdKifFp>(
      {__func__, handle, port, context}, {value},
      [&](auto& command, auto& reply) { *value = command.value(reply); }, value, mode);
}

FWStatus_t FW_GetKifFlags(fwlibhandle_* handle, const dvs_port_* port, void* context) {
  return runCommand<CTarnFWCmdGetKifFlags>({__func__, handle, port, context});
}

FWStatus_t FW_SetKifFlags(fwlibhandle_* handle, const dvs_port_* port, void* context,
                          const char* name, unsigned int value) {
  return runCommand<CTarnFWCmdSetKifFlags>({__func__, handle, port, context}, name, value);
}

}  // extern "C"
