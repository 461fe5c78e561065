// The flat functions for connections of a filter.

#include "TarnFWCmdClearAllConnection.h"
#include "TarnFWCmdGetConnectionCount.h"
#include "TarnFWCmdGetConnectionStat.h"
#include "TarnFWCmdRun.h"
#include "TarnFWCmdSetAllConnection.h"
#include "TarnFWCmdSetConnectionByFilter.h"
#include "TarnFWCmdSetConnectionByList.h"
#include "tarnfw.h"

using namespace TarnFirewall;

extern "C" {

FWStatus_t FW_GetConnectionCount(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                 const FWConnFilter_* filter, unsigned int* count) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (count == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    CTarnFWCmdGetConnectionCount command(port, filter);
    return run(library, command, context,
               [&](const CTarnFWCmdReply& reply) { *count = command.count(reply); });
  });
}

FWStatus_t FW_GetConnectionStat(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                unsigned int count, unsigned long cursor, void* records,
                                unsigned int* got) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (count == 0 || records == nullptr || got == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    CTarnFWCmdGetConnectionStat command(port, nullptr, count, cursor);
    return run(library, command, context, [&](const CTarnFWCmdReply& reply) {
      copyRecords(command.records(reply), static_cast<FWFlowRecord_*>(records), got);
    });
  });
}

FWStatus_t FW_SetConnectionByFilter(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                    const FWConnFilter_* filter, unsigned int* count) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (filter == nullptr || count == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    CTarnFWCmdSetConnectionByFilter command(port, filter);
    return run(library, command, context,
               [&](const CTarnFWCmdReply& reply) { *count = command.count(reply); });
  });
}

FWStatus_t FW_SetConnectionByList(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                  unsigned int count, const FWConnection_* list,
                                  unsigned int* result) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (count == 0 || list == nullptr || result == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    CTarnFWCmdSetConnectionByList command(port, count, list);
    return run(library, command, context,
               [&](const CTarnFWCmdReply& reply) { *result = command.result(reply); });
  });
}

FWStatus_t FW_SetAllConnection(fwlibhandle_* handle, const dvs_port_* port, void* context,
                               unsigned int* count) {
  return runAndRead<CTarnFWCmdSetAllConnection>(
      {__func__, handle, port, context}, {count},
      [&](auto& command, auto& reply) { *count = command.count(reply); });
}

FWStatus_t FW_ClearAllConnection(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                 unsigned int* count) {
  return runAndRead<CTarnFWCmdClearAllConnection>(
      {__func__, handle, port, context}, {count},
      [&](auto& command, auto& reply) { *count = command.count(reply); });
}

}  // extern "C"
