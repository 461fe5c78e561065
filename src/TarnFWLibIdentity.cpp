// The flat functions for fully qualified names, users and the state of deep inspection.

#include <algorithm>

#include "TarnFWAttributeUtils.h"
#include "TarnFWCmdDeleteFqdnTree.h"
#include "TarnFWCmdGetConnectionDPIInfo.h"
#include "TarnFWCmdGetFqdnCount.h"
#include "TarnFWCmdGetFqdnEntries.h"
#include "TarnFWCmdGetUid2SidMapping.h"
#include "TarnFWCmdGetUid2SidMappingSize.h"
#include "TarnFWCmdGetUuid.h"
#include "TarnFWCmdRun.h"
#include "TarnFWCmdSetUid2SidMapping.h"
#include "TarnFWSid.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

/// The entry after `before`, for a function that takes addresses of one size.
FWStatus_t fqdnEntry(const FWCall& call, const FWAddress_& before, std::uint8_t family,
                     bool familyFits, FWFqdnEntry_* entry) {
  const auto body = [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (entry == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    if (!familyFits) return FW_STATUS_INVALID_ADDRESS_FAMILY;
    CTarnFWCmdGetFqdnEntries command(call.port, before, family);
    return run(library, command, call.context,
               [&](const CTarnFWCmdReply& reply) { *entry = command.entry(reply); });
  };
  return callLibrary(call.place.function, call.handle, body, call.place.file, call.place.line);
}

/// Sends the identifiers of a user with what is to be done with them.
FWStatus_t mapUid2Sid(const FWCall& call, Uid2SidOp_t operation, const fwattr_sid* uid,
                      const fwattr_sid* sids, unsigned int count) {
  const auto body = [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (uid == nullptr || (sids == nullptr && count != 0)) return FW_STATUS_INVALID_ARGUMENT;
    CTarnFWCmdSetUid2SidMapping command(call.port, operation, *uid);
    command.addSid(sids, count);
    return run(library, command, call.context);
  };
  return callLibrary(call.place.function, call.handle, body, call.place.file, call.place.line);
}

}  // namespace

extern "C" {

// --- Fully qualified names

FWStatus_t FW_DeleteFqdnTree(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             int* result) {
  return runAndRead<CTarnFWCmdDeleteFqdnTree>(
      {__func__, handle, port, context}, {result},
      [&](auto& command, auto& reply) { *result = command.returnCode(reply); });
}

FWStatus_t FW_GetFqdnCount(fwlibhandle_* handle, const dvs_port_* port, void* context,
                           unsigned int* entries, unsigned int* uuids) {
  return runAndRead<CTarnFWCmdGetFqdnCount>({__func__, handle, port, context}, {entries, uuids},
                                            [&](auto& command, auto& reply) {
                                              *entries = command.entries(reply);
                                              *uuids = command.uuids(reply);
                                            });
}

FWStatus_t FW_GetFqdnEntriesV4(fwlibhandle_* handle, const dvs_port_* port, void* context,
                               FWAddress_ before, std::uint8_t family, FWFqdnEntry_* entry) {
  return fqdnEntry({__func__, handle, port, context}, before, family, isFqdnIPv4(family), entry);
}

FWStatus_t FW_GetFqdnEntriesV6(fwlibhandle_* handle, const dvs_port_* port, void* context,
                               FWAddress_ before, std::uint8_t family, FWFqdnEntry_* entry) {
  return fqdnEntry({__func__, handle, port, context}, before, family, !isFqdnIPv4(family), entry);
}

FWStatus_t FW_GetUuid(fwlibhandle_* handle, const dvs_port_* port, void* context,
                      const FWAddress_* address, unsigned int max, FWUuidItem_* items,
                      unsigned int* returned) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (address == nullptr || max == 0 || items == nullptr || returned == nullptr) {
      return FW_STATUS_INVALID_ARGUMENT;
    }
    CTarnFWCmdGetUuid command(port, *address, max);
    return run(library, command, context, [&](const CTarnFWCmdReply& reply) {
      const auto entries = command.entries(reply);
      for (std::uint32_t i = 0; i < entries.size(); ++i) {
        items[i] = entries[i].item;
        items[i].text[sizeof items[i].text - 1] = '\0';
      }
      *returned = entries.size();
    });
  });
}

// --- Users

FWStatus_t FW_AddAttrUid2MultiSid(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                  const fwattr_sid* uid, const fwattr_sid* sids,
                                  unsigned int count) {
  return mapUid2Sid({__func__, handle, port, context}, FW_UID2SID_ADD, uid, sids, count);
}

FWStatus_t FW_DelAttrUid2Sid(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             const fwattr_sid* uid, const fwattr_sid* sids, unsigned int count) {
  return mapUid2Sid({__func__, handle, port, context}, FW_UID2SID_DELETE, uid, sids, count);
}

FWStatus_t FW_GetUid2SidMapSize(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                unsigned int* count, unsigned int* size) {
  return runAndRead<CTarnFWCmdGetUid2SidMappingSize>(
      {__func__, handle, port, context}, {count, size}, [&](auto& command, auto& reply) {
        *count = command.users(reply);
        *size = command.size(reply);
      });
}

FWStatus_t FW_GetUid2SidMap(fwlibhandle_* handle, const dvs_port_* port, void* context,
                            unsigned int count, unsigned int size) {
  return runCommand<CTarnFWCmdGetUid2SidMapping>({__func__, handle, port, context}, count, size);
}

FWStatus_t FW_SIDStringToBinary(const char* text, fwattr_sid* sid) {
  return callFrame(__func__, [&]() -> FWStatus_t {
    if (text == nullptr || sid == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    fwattr_sid read;
    if (!sid_str2bin(text, &read)) return FW_STATUS_INVALID_ATTRIBUTE_VALUE;
    *sid = read;
    return FW_STATUS_OK;
  });
}

FWStatus_t FW_BinaryToSIDString(const fwattr_sid* sid, char* text, unsigned int size) {
  return callFrame(__func__, [&]() -> FWStatus_t {
    if (sid == nullptr || text == nullptr || size == 0) return FW_STATUS_INVALID_ARGUMENT;
    char whole[kSidTextSize];
    if (!sid_bin2str(sid, whole, sizeof whole)) return FW_STATUS_INVALID_ATTRIBUTE_VALUE;
    const std::size_t length = std::char_traits<char>::length(whole);
    if (length >= size) return FW_STATUS_BUFFER_TOO_SMALL;
    std::copy_n(whole, length + 1, text);
    return FW_STATUS_OK;
  });
}

// --- State of deep inspection

FWStatus_t FW_GetConnectionDPIInfo(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                   const std::uint64_t* ids, unsigned int count,
                                   FWDPIInfo_* records, unsigned int max) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle& library) -> FWStatus_t {
    if (ids == nullptr || count == 0 || records == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    CTarnFWCmdGetConnectionDPIInfo command(port);
    if (!command.addStateID(ids, count)) return FW_STATUS_INVALID_ARGUMENT;
    return run(library, command, context, [&](const CTarnFWCmdReply& reply) {
      const auto answered = command.records(reply);
      const std::uint32_t there = std::min<std::uint32_t>(answered.checkedSize(), max);
      for (std::uint32_t i = 0; i < there; ++i) records[i] = answered[i];
      std::fill(records + there, records + max, FWDPIInfo_{});
    });
  });
}

const char* FW_DPIStateToString(unsigned int state) {
  return dpiState2Str(static_cast<FWDPIState>(state));
}

}  // extern "C"
