#include "TarnFWCmdClearRootRuleSet.h"
#include "TarnFWCmdClearRuleSet.h"
#include "TarnFWCmdClearRuleSetJump.h"
#include "TarnFWCmdCreateRuleSet.h"
#include "TarnFWCmdDestroyAllRuleSet.h"
#include "TarnFWCmdDestroyRuleSet.h"
#include "TarnFWCmdGetDlbOfRuleSet.h"
#include "TarnFWCmdGetRootRuleSet.h"
#include "TarnFWCmdGetRuleCountOfRuleSet.h"
#include "TarnFWCmdGetRuleOfRuleSet.h"
#include "TarnFWCmdGetRuleSetCount.h"
#include "TarnFWCmdGetRuleSetInfo.h"
#include "TarnFWCmdGetRuleSetJump.h"
#include "TarnFWCmdGetRuleSetList.h"
#include "TarnFWCmdGetStatOfRuleSet.h"
#include "TarnFWCmdRun.h"
#include "TarnFWCmdSetRootRuleSet.h"
#include "TarnFWCmdSetRuleSetJump.h"
#include "TarnFWRuleFactory.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

/// A name from the kernel, closed with a NUL for the caller.
FWRuleSetID_t nameAt(const CTarnFWCmdReply& reply, std::size_t offset) {
  auto id = reply.record<FWRuleSetID_t>(offset);
  id.text[sizeof id.text - 1] = '\0';
  return id;
}

/// Makes a command that reads from a rule set: by `max` ids when there are any, else by index.
template <typename Command>
Command readCommand(const dvs_port_* port, const FWRuleSetID_t& id, unsigned int kind,
                    unsigned int max, unsigned int from, const unsigned int* ids) {
  if (ids != nullptr) return Command(port, id, max, ids, kind);
  return Command(port, id, max, from, kind);
}

}  // namespace

extern "C" {

FWStatus_t FW_GetRuleSetCount(fwlibhandle_* handle, const dvs_port_* port, void* context,
                              unsigned int* count) {
  return runAndRead<CTarnFWCmdGetRuleSetCount>(
      {__func__, handle, port, context}, {count},
      [&](auto& command, auto& reply) { *count = command.count(reply); });
}

FWStatus_t FW_GetRuleSetList(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             unsigned int max, unsigned int from, FWRuleSetID_t* names,
                             unsigned int* returned) {
  return runAndCopy<CTarnFWCmdGetRuleSetList>({__func__, handle, port, context}, names, returned,
                                              max, from);
}

FWStatus_t FW_GetRootRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             FWRuleSetID_t* layer3, FWRuleSetID_t* layer2) {
  return runAndRead<CTarnFWCmdGetRootRuleSet>({__func__, handle, port, context}, {layer3, layer2},
                                              [&](auto&, auto& reply) {
                                                *layer3 = nameAt(reply, 0);
                                                *layer2 = nameAt(reply, 64);
                                              });
}

FWStatus_t FW_ClearRootRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context) {
  return runCommand<CTarnFWCmdClearRootRuleSet>({__func__, handle, port, context});
}

FWStatus_t FW_DestroyRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             const FWRuleSetID_t* id) {
  return runCommand<CTarnFWCmdDestroyRuleSet>({__func__, handle, port, context}, id);
}

FWStatus_t FW_DestroyAllRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context) {
  return runCommand<CTarnFWCmdDestroyAllRuleSet>({__func__, handle, port, context});
}

FWStatus_t FW_ClearRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                           const FWRuleSetID_t* id) {
  return runCommand<CTarnFWCmdClearRuleSet>({__func__, handle, port, context}, id);
}

FWStatus_t FW_SetRuleSetJump(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             const FWRuleSetID_t* id, const FWRuleSetID_t* target) {
  return runCommand<CTarnFWCmdSetRuleSetJump>({__func__, handle, port, context}, id, target);
}

FWStatus_t FW_GetRuleSetJump(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             const FWRuleSetID_t* id, FWRuleSetID_t* target) {
  return runAndRead<CTarnFWCmdGetRuleSetJump>(
      {__func__, handle, port, context}, {target},
      [&](auto&, auto& reply) { *target = nameAt(reply, 64); }, id);
}

FWStatus_t FW_ClearRuleSetJump(fwlibhandle_* handle, const dvs_port_* port, void* context,
                               const FWRuleSetID_t* id) {
  return runCommand<CTarnFWCmdClearRuleSetJump>({__func__, handle, port, context}, id);
}

FWStatus_t FW_GetRuleCountOfRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                    const FWRuleSetID_t* id, unsigned int kind,
                                    unsigned int* count) {
  return runAndRead<CTarnFWCmdGetRuleCountOfRuleSet>(
      {__func__, handle, port, context}, {count},
      [&](auto& command, auto& reply) { *count = command.count(reply); }, id, kind);
}

FWStatus_t FW_GetRuleSetInfo(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             const FWRuleSetID_t* id, unsigned int* count,
                             std::uint64_t* realizationTime, std::uint64_t* generation) {
  return runAndRead<CTarnFWCmdGetRuleSetInfo>(
      {__func__, handle, port, context}, {count, realizationTime, generation},
      [&](auto& command, auto& reply) {
        *count = command.count(reply);
        *realizationTime = command.realizationTime(reply);
        *generation = command.generation(reply);
      },
      id);
}

FWStatus_t FW_CreateRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                            const FWRuleSetID_t* id, const FWRuleSetID_t* jump,
                            const FWRule_* rules, unsigned int count) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (id == nullptr || (rules == nullptr && count != 0)) return FW_STATUS_INVALID_ARGUMENT;
    auto list = std::make_unique<CTarnFWRuleList>(false);
    for (unsigned int i = 0; i < count; ++i) {
      std::unique_ptr<CTarnFWRule> rule = CTarnFWRuleFactory::newFromMsgBuf(rules + i);
      if (rule == nullptr) return FW_STATUS_INVALID_RULE;
      list->addRule(std::move(rule));
    }
    CTarnFWCmdCreateRuleSet command(port, *id, jump == nullptr ? FWRuleSetID_t{} : *jump,
                                    std::move(list));
    return run(library, command, context);
  });
}

FWStatus_t FW_SetRootRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             const FWRuleSetID_t* layer3, const FWRuleSetID_t* layer2) {
  return runCommand<CTarnFWCmdSetRootRuleSet>({__func__, handle, port, context}, layer3, layer2);
}

FWStatus_t FW_GetRuleOfRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                               unsigned int kind, unsigned int max, unsigned int from,
                               const FWRuleSetID_t* id, const unsigned int* ids, FWRule_* rules,
                               unsigned int* returned) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (id == nullptr || rules == nullptr || returned == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    auto command = readCommand<CTarnFWCmdGetRuleOfRuleSet>(port, *id, kind, max, from, ids);
    return run(library, command, context, [&](const CTarnFWCmdReply& reply) {
      copyRecords(command.records(reply), rules, returned);
    });
  });
}

FWStatus_t FW_GetStatOfRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                               unsigned int kind, unsigned int max, unsigned int from,
                               const FWRuleSetID_t* id, const unsigned int* ids, FWRuleStat_* stats,
                               unsigned int* returned) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (id == nullptr || stats == nullptr || returned == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    auto command = readCommand<CTarnFWCmdGetStatOfRuleSet>(port, *id, kind, max, from, ids);
    return run(library, command, context, [&](const CTarnFWCmdReply& reply) {
      copyRecords(command.records(reply), stats, returned);
    });
  });
}

FWStatus_t FW_GetDlbOfRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                              unsigned int kind, unsigned int max, unsigned int from,
                              const FWRuleSetID_t* id, const unsigned int* ids, FWDlbRule_* rules,
                              unsigned int* returned) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (id == nullptr || rules == nullptr || returned == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    auto command = readCommand<CTarnFWCmdGetDlbOfRuleSet>(port, *id, kind, max, from, ids);
    return run(library, command, context, [&](const CTarnFWCmdReply& reply) {
      copyRecords(command.records(reply), rules, returned);
    });
  });
}

}  // extern "C"
