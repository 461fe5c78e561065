#include "TarnFWCmdClearAddrSet.h"
#include "TarnFWCmdConfigSharedAddrSet.h"
#include "TarnFWCmdCreateAddrSet.h"
#include "TarnFWCmdDestroyAddrSet.h"
#include "TarnFWCmdDestroyAllAddrSet.h"
#include "TarnFWCmdGetAddrSetCount.h"
#include "TarnFWCmdGetAddrSetInfo.h"
#include "TarnFWCmdGetAddrSetList.h"
#include "TarnFWCmdGetAddrSetStatList.h"
#include "TarnFWCmdGetAddrSetTypeAndSize.h"
#include "TarnFWCmdGetAddrValidOfAddrSet.h"
#include "TarnFWCmdGetAddressOfAddrSet.h"
#include "TarnFWCmdGetAddressStatOfAddrSet.h"
#include "TarnFWCmdGetElementsOfContainer.h"
#include "TarnFWCmdGetSharedAddrSet.h"
#include "TarnFWCmdRun.h"
#include "TarnFWCmdSetAddrSetCfg.h"
#include "tarnfw.h"

using namespace TarnFirewall;

extern "C" {

FWStatus_t FW_CreateAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                            const FWAddrSetID_t* id, FWAddrSetType_t type,
                            const FWAddress_* addresses, unsigned int count) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (id == nullptr || (addresses == nullptr && count != 0)) return FW_STATUS_INVALID_ARGUMENT;
    CTarnFWCmdCreateAddrSet command(port, *id, type);
    command.addAddress(addresses, count);
    return run(library, command, context);
  });
}

FWStatus_t FW_DestroyAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             const FWAddrSetID_t* id) {
  return runCommand<CTarnFWCmdDestroyAddrSet>({__func__, handle, port, context}, id);
}

FWStatus_t FW_DestroyAllAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context) {
  return runCommand<CTarnFWCmdDestroyAllAddrSet>({__func__, handle, port, context});
}

FWStatus_t FW_ClearAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                           const FWAddrSetID_t* id) {
  return runCommand<CTarnFWCmdClearAddrSet>({__func__, handle, port, context}, id);
}

FWStatus_t FW_GetAddrSetCount(fwlibhandle_* handle, const dvs_port_* port, void* context,
                              FWAddrSetType_t type, unsigned int* count) {
  return runAndRead<CTarnFWCmdGetAddrSetCount>(
      {__func__, handle, port, context}, {count},
      [&](auto& command, auto& reply) { *count = command.count(reply); }, type);
}

FWStatus_t FW_GetAddrSetList(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             FWAddrSetType_t type, unsigned int max, unsigned int from,
                             FWAddrSetID_t* names, unsigned int* returned) {
  return runAndCopy<CTarnFWCmdGetAddrSetList>({__func__, handle, port, context}, names, returned,
                                              type, max, from);
}

FWStatus_t FW_GetAddrSetStatList(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                 FWAddrSetType_t type, unsigned int max, unsigned int from,
                                 FWAddrSetStat_* stats, unsigned int* returned) {
  return runAndCopy<CTarnFWCmdGetAddrSetStatList>({__func__, handle, port, context}, stats,
                                                  returned, type, max, from);
}

FWStatus_t FW_GetAddrSetTypeAndSize(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                    const FWAddrSetID_t* id, unsigned int* type,
                                    unsigned int* count, unsigned int* size) {
  return runAndRead<CTarnFWCmdGetAddrSetTypeAndSize>(
      {__func__, handle, port, context}, {type, count, size},
      [&](auto& command, auto& reply) {
        *type = command.type(reply);
        *count = command.count(reply);
        *size = command.serializedSize(reply);
      },
      id);
}

FWStatus_t FW_GetAddrSetInfo(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             const FWAddrSetID_t* id, unsigned int* count,
                             std::uint64_t* realizationTime, std::uint64_t* generation) {
  return runAndRead<CTarnFWCmdGetAddrSetInfo>(
      {__func__, handle, port, context}, {count, realizationTime, generation},
      [&](auto& command, auto& reply) {
        *count = command.count(reply);
        *realizationTime = command.realizationTime(reply);
        *generation = command.generation(reply);
      },
      id);
}

FWStatus_t FW_GetAddressOfAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                  const FWAddrSetID_t* id, unsigned int max, unsigned int from,
                                  FWAddress_* addresses, unsigned int* returned) {
  return runAndCopy<CTarnFWCmdGetAddressOfAddrSet>({__func__, handle, port, context}, addresses,
                                                   returned, id, max, from);
}

FWStatus_t FW_GetAddrValidOfAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                    const FWAddrSetID_t* id, unsigned int max, unsigned int from,
                                    FWAddressValid_* records, unsigned int* returned) {
  return runAndCopy<CTarnFWCmdGetAddrValidOfAddrSet>({__func__, handle, port, context}, records,
                                                     returned, id, max, from);
}

FWStatus_t FW_GetAddressStatOfAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                      const FWAddrSetID_t* id, unsigned int max, unsigned int from,
                                      unsigned int clear, FWAddressStat_* stats,
                                      unsigned int* returned) {
  return runAndCopy<CTarnFWCmdGetAddressStatOfAddrSet>({__func__, handle, port, context}, stats,
                                                       returned, id, max, from, clear);
}

FWStatus_t FW_GetElementsOfContainer(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                     const char* name, FWContainerType type, unsigned int count,
                                     unsigned int bufferSize, char** elements,
                                     unsigned int* returned) {
  return runAndRead<CTarnFWCmdGetElementsOfContainer>(
      {__func__, handle, port, context}, {elements, returned},
      [&](auto& command, auto&) -> FWStatus_t {
        const bool whole = command.elementsToCharArray(elements, count, returned);
        return whole ? FW_STATUS_OK : FW_STATUS_INTERNAL_ERROR;
      },
      name, type, count, bufferSize);
}

FWStatus_t FW_ConfigSharedAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                  unsigned int enable) {
  return runCommand<CTarnFWCmdConfigSharedAddrSet>({__func__, handle, port, context}, enable != 0);
}

FWStatus_t FW_GetSharedAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                               unsigned int* enabled) {
  return runAndRead<CTarnFWCmdGetSharedAddrSet>(
      {__func__, handle, port, context}, {enabled},
      [&](auto& command, auto& reply) { *enabled = command.enabled(reply) ? 1 : 0; });
}

FWStatus_t FW_SetAddrSetCfg(fwlibhandle_* handle, const dvs_port_* port, void* context,
                            FWAddrSetCfg_* configuration) {
  return runAndRead<CTarnFWCmdSetAddrSetCfg>(
      {__func__, handle, port, context}, {},
      [&](auto& command, auto& reply) {
        configuration->first = command.first(reply);
        configuration->second = command.second(reply);
      },
      configuration);
}

}  // extern "C"
