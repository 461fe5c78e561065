// The flat functions for the load balancer and for application-level gateways.

#include "TarnFWCmdClearLBStat.h"
#include "TarnFWCmdGetAlgCount.h"
#include "TarnFWCmdGetAlgPortCount.h"
#include "TarnFWCmdGetAlgPorts.h"
#include "TarnFWCmdGetAlgs.h"
#include "TarnFWCmdGetLBConfig.h"
#include "TarnFWCmdGetLBConfigSize.h"
#include "TarnFWCmdGetLBStat.h"
#include "TarnFWCmdGetLBStatSize.h"
#include "TarnFWCmdRun.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

/// Sends a record that the kernel's answer replaces.
template <typename Command, typename Record>
FWStatus_t runInPlace(const FWCall& call, Record* record) {
  return runAndRead<Command>(
      call, {record}, [&](auto& command, auto& reply) { *record = command.answer(reply); }, record);
}

template <typename Command>
FWStatus_t runCount(const FWCall& call, unsigned int* size, unsigned int* count) {
  return runAndRead<Command>(call, {size, count}, [&](auto& command, auto& reply) {
    *size = command.size(reply);
    *count = command.count(reply);
  });
}

}  // namespace

extern "C" {

FWStatus_t FW_GetLBConfigSize(fwlibhandle_* handle, const dvs_port_* port, void* context,
                              FWLBConfigSize_* sizes) {
  return runInPlace<CTarnFWCmdGetLBConfigSize>({__func__, handle, port, context}, sizes);
}

FWStatus_t FW_GetLBConfig(fwlibhandle_* handle, const dvs_port_* port, void* context,
                          const FWLBConfigSize_* sizes) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (sizes == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    CTarnFWCmdGetLBConfig command(port, sizes);
    return run(library, command, context);
  });
}

FWStatus_t FW_GetLBStatSize(fwlibhandle_* handle, const dvs_port_* port, void* context,
                            FWLBStat_* stat) {
  return runInPlace<CTarnFWCmdGetLBStatSize>({__func__, handle, port, context}, stat);
}

FWStatus_t FW_GetLBStat(fwlibhandle_* handle, const dvs_port_* port, void* context,
                        FWLBStat_* stat) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (stat == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    CTarnFWCmdGetLBStat command(port, stat);
    return run(library, command, context,
               [&](const CTarnFWCmdReply& reply) { *stat = command.answer(reply); });
  });
}

FWStatus_t FW_ClearLBStat(fwlibhandle_* handle, const dvs_port_* port, void* context,
                          FWLBStat_* stat) {
  return runInPlace<CTarnFWCmdClearLBStat>({__func__, handle, port, context}, stat);
}

FWStatus_t FW_GetAlgCount(fwlibhandle_* handle, const dvs_port_* port, void* context,
                          unsigned int* size, unsigned int* count) {
  return runCount<CTarnFWCmdGetAlgCount>({__func__, handle, port, context}, size, count);
}

FWStatus_t FW_GetAlgs(fwlibhandle_* handle, const dvs_port_* port, void* context, unsigned int size,
                      unsigned int count, FWAlg_* records, unsigned int* returned) {
  return runAndCopy<CTarnFWCmdGetAlgs>({__func__, handle, port, context}, records, returned, size,
                                       count);
}

FWStatus_t FW_GetAlgPortCount(fwlibhandle_* handle, const dvs_port_* port, void* context,
                              unsigned int* size, unsigned int* count) {
  return runCount<CTarnFWCmdGetAlgPortCount>({__func__, handle, port, context}, size, count);
}

FWStatus_t FW_GetAlgPorts(fwlibhandle_* handle, const dvs_port_* port, void* context,
                          unsigned int size, unsigned int count, FWAlgPort_* records,
                          unsigned int* returned) {
  return runAndCopy<CTarnFWCmdGetAlgPorts>({__func__, handle, port, context}, records, returned,
                                           size, count);
}

}  // extern "C"
