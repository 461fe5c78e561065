#include <cstring>

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

namespace {

/// A name from the kernel, closed with a NUL for the caller.
FWAddrSetID_t closed(FWAddrSetID_t id) {
  id.text[sizeof id.text - 1] = '\0';
  return id;
}

}  // namespace

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
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (id == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    CTarnFWCmdDestroyAddrSet command(port, *id);
    return run(library, command, context);
  });
}

FWStatus_t FW_DestroyAllAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) {
    CTarnFWCmdDestroyAllAddrSet command(port);
    return run(library, command, context);
  });
}

FWStatus_t FW_ClearAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                           const FWAddrSetID_t* id) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (id == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    CTarnFWCmdClearAddrSet command(port, *id);
    return run(library, command, context);
  });
}

FWStatus_t FW_GetAddrSetCount(fwlibhandle_* handle, const dvs_port_* port, void* context,
                              FWAddrSetType_t type, unsigned int* count) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (count == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    CTarnFWCmdGetAddrSetCount command(port, type);
    return run(library, command, context,
               [&](const CTarnFWCmdReply& reply) { *count = command.count(reply); });
  });
}

FWStatus_t FW_GetAddrSetList(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             FWAddrSetType_t type, unsigned int max, unsigned int from,
                             FWAddrSetID_t* names, unsigned int* returned) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (names == nullptr || returned == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    CTarnFWCmdGetAddrSetList command(port, type, max, from);
    return run(library, command, context, [&](const CTarnFWCmdReply& reply) {
      *returned = command.records(reply).copyTo(names);
      for (unsigned int i = 0; i < *returned; ++i) names[i] = closed(names[i]);
    });
  });
}

FWStatus_t FW_GetAddrSetStatList(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                 FWAddrSetType_t type, unsigned int max, unsigned int from,
                                 FWAddrSetStat_* stats, unsigned int* returned) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (stats == nullptr || returned == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    CTarnFWCmdGetAddrSetStatList command(port, type, max, from);
    return run(library, command, context, [&](const CTarnFWCmdReply& reply) {
      *returned = command.records(reply).copyTo(stats);
      for (unsigned int i = 0; i < *returned; ++i) stats[i].name = closed(stats[i].name);
    });
  });
}

FWStatus_t FW_GetAddrSetTypeAndSize(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                    const FWAddrSetID_t* id, unsigned int* type,
                                    unsigned int* count, unsigned int* size) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (id == nullptr || type == nullptr || count == nullptr || size == nullptr) {
      return FW_STATUS_INVALID_ARGUMENT;
    }
    CTarnFWCmdGetAddrSetTypeAndSize command(port, *id);
    return run(library, command, context, [&](const CTarnFWCmdReply& reply) {
      *type = command.type(reply);
      *count = command.count(reply);
      *size = command.serializedSize(reply);
    });
  });
}

FWStatus_t FW_GetAddrSetInfo(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             const FWAddrSetID_t* id, unsigned int* count,
                             std::uint64_t* realizationTime, std::uint64_t* generation) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (id == nullptr || count == nullptr || realizationTime == nullptr || generation == nullptr) {
      return FW_STATUS_INVALID_ARGUMENT;
    }
    CTarnFWCmdGetAddrSetInfo command(port, *id);
    return run(library, command, context, [&](const CTarnFWCmdReply& reply) {
      *count = command.count(reply);
      *realizationTime = command.realizationTime(reply);
      *generation = command.generation(reply);
    });
  });
}

FWStatus_t FW_GetAddressOfAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                  const FWAddrSetID_t* id, unsigned int max, unsigned int from,
                                  FWAddress_* addresses, unsigned int* returned) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (id == nullptr || addresses == nullptr || returned == nullptr) {
      return FW_STATUS_INVALID_ARGUMENT;
    }
    CTarnFWCmdGetAddressOfAddrSet command(port, *id, max, from);
    return run(library, command, context, [&](const CTarnFWCmdReply& reply) {
      *returned = command.records(reply).copyTo(addresses);
    });
  });
}

FWStatus_t FW_GetAddrValidOfAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                    const FWAddrSetID_t* id, unsigned int max, unsigned int from,
                                    FWAddressValid_* records, unsigned int* returned) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (id == nullptr || records == nullptr || returned == nullptr) {
      return FW_STATUS_INVALID_ARGUMENT;
    }
    CTarnFWCmdGetAddrValidOfAddrSet command(port, *id, max, from);
    return run(library, command, context, [&](const CTarnFWCmdReply& reply) {
      *returned = command.records(reply).copyTo(records);
    });
  });
}

FWStatus_t FW_GetAddressStatOfAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                      const FWAddrSetID_t* id, unsigned int max, unsigned int from,
                                      unsigned int clear, FWAddressStat_* stats,
                                      unsigned int* returned) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (id == nullptr || stats == nullptr || returned == nullptr) {
      return FW_STATUS_INVALID_ARGUMENT;
    }
    CTarnFWCmdGetAddressStatOfAddrSet command(port, *id, max, from, clear);
    return run(library, command, context, [&](const CTarnFWCmdReply& reply) {
      *returned = command.records(reply).copyTo(stats);
    });
  });
}

FWStatus_t FW_GetElementsOfContainer(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                     const char* name, FWContainerType type, unsigned int count,
                                     unsigned int bufferSize, char** elements,
                                     unsigned int* returned) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (name == nullptr || elements == nullptr || returned == nullptr) {
      return FW_STATUS_INVALID_ARGUMENT;
    }
    CTarnFWCmdGetElementsOfContainer command(port, name, type, count, bufferSize);
    return run(library, command, context, [&](const CTarnFWCmdReply&) -> FWStatus_t {
      if (!command.elementsToCharArray(elements, count, returned)) return FW_STATUS_INTERNAL_ERROR;
      return FW_STATUS_OK;
    });
  });
}

FWStatus_t FW_ConfigSharedAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                  unsigned int enable) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) {
    CTarnFWCmdConfigSharedAddrSet command(port, enable != 0);
    return run(library, command, context);
  });
}

FWStatus_t FW_GetSharedAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                               unsigned int* enabled) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (enabled == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    CTarnFWCmdGetSharedAddrSet command(port);
    return run(library, command, context,
               [&](const CTarnFWCmdReply& reply) { *enabled = command.enabled(reply) ? 1 : 0; });
  });
}

FWStatus_t FW_SetAddrSetCfg(fwlibhandle_* handle, const dvs_port_* port, void* context,
                            FWAddrSetCfg_* configuration) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (configuration == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    CTarnFWCmdSetAddrSetCfg command(port, *configuration);
    return run(library, command, context, [&](const CTarnFWCmdReply& reply) {
      configuration->first = command.first(reply);
      configuration->second = command.second(reply);
    });
  });
}

}  // extern "C"
