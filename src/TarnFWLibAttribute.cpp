// The flat functions for attributes of connections and for domains: commands that are built in
// steps.

#include <algorithm>
#include <atomic>
#include <vector>

#include "TarnFWAddressFactory.h"
#include "TarnFWCmdAddDomain2IPMapping.h"
#include "TarnFWCmdGetConnAttrInfo.h"
#include "TarnFWCmdRun.h"
#include "TarnFWCmdSetConnAttr.h"
#include "TarnFWLibSteps.h"
#include "TarnFWSid.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

using ConnAttrs = CTarnFWLibSteps<CTarnFWCmdSetConnAttr, fwconnattr_>;
using Domains = CTarnFWLibSteps<CTarnFWCmdAddDomain2IPMapping, fwdomain2ip_>;

/// The frame of a function that works on a command that was made before: `body` gets the command.
/// A handle that stands for none gives 3.
template <typename Steps, typename Handle, typename Body>
FWStatus_t onSteps(const FWCallPlace& place, const Handle* handle, Body&& body) {
  const auto found = [&]() -> FWStatus_t {
    const auto command = Steps::GetInstance().find(handle);
    return command == nullptr ? FW_STATUS_INVALID_ARGUMENT : body(*command);
  };
  return callFrame(place.function, found, place.file, place.line);
}

FWCallPlace here(const char* function, int line = __builtin_LINE()) {
  return {function, __FILE__, line};
}

/// Sends a command that was made before. A port that is given replaces its selector.
template <typename Steps, typename Handle>
FWStatus_t sendSteps(const FWCall& call, const Handle* handle) {
  const auto body = [&](CTarnFWLibHandle& library) -> FWStatus_t {
    const auto command = Steps::GetInstance().find(handle);
    if (command == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    command->setDVSPort(call.port, true);
    return run(library, *command, call.context);
  };
  return callLibrary(call.place.function, call.handle, body, call.place.file, call.place.line);
}

template <typename Steps, typename Handle>
FWStatus_t releaseSteps(const FWCallPlace& place, const Handle* handle) {
  const auto body = [&]() -> FWStatus_t {
    return Steps::GetInstance().release(handle) ? FW_STATUS_OK : FW_STATUS_INVALID_ARGUMENT;
  };
  return callFrame(place.function, body, place.file, place.line);
}

/// Adds one attribute, made of these arguments, to the command of a handle.
template <typename... Value>
FWStatus_t addAttribute(const FWCallPlace& place, const fwconnattr_* handle, FWAttrKeyID key,
                        const Value&... value) {
  return onSteps<ConnAttrs>(place, handle, [&](CTarnFWCmdSetConnAttr& command) -> FWStatus_t {
    command.addAttribute(std::make_unique<CTarnFWL7Attribute>(key, value...));
    return FW_STATUS_OK;
  });
}

/// Adds security identifiers; none when one of them has no text.
FWStatus_t addSids(const FWCallPlace& place, const fwconnattr_* handle, FWAttrKeyID key,
                   const fwattr_sid* sids, unsigned int count) {
  return onSteps<ConnAttrs>(place, handle, [&](CTarnFWCmdSetConnAttr& command) -> FWStatus_t {
    if (sids == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    std::vector<std::unique_ptr<CTarnFWL7Attribute>> attributes;
    for (unsigned int i = 0; i < count; ++i) {
      char text[kSidTextSize];
      if (!sid_bin2str(sids + i, text, sizeof text)) return FW_STATUS_INVALID_ATTRIBUTE_VALUE;
      attributes.push_back(std::make_unique<CTarnFWL7Attribute>(key, std::string(text)));
    }
    for (auto& attribute : attributes) command.addAttribute(std::move(attribute));
    return FW_STATUS_OK;
  });
}

CTarnFWL7Attribute::Uuid uuidOf(const std::uint8_t* bytes) {
  CTarnFWL7Attribute::Uuid uuid;
  std::copy_n(bytes, uuid.size(), uuid.begin());
  return uuid;
}

const char* orEmpty(const char* text) { return text == nullptr ? "" : text; }

}  // namespace

std::uintptr_t TarnFirewall::nextStepHandle() {
  static std::atomic<std::uintptr_t> last{0};
  return ++last;
}

extern "C" {

FWStatus_t FW_GetConnAttrInfo(fwlibhandle_* handle, const dvs_port_* port, void* context,
                              const FWConnection_* connection, std::uint64_t id,
                              unsigned int* count, unsigned int* size) {
  const auto read = [&](auto& command, auto& reply) {
    *count = command.count(reply);
    *size = command.size(reply);
  };
  const FWCall call(__func__, handle, port, context);
  if (connection == nullptr) {
    return runAndRead<CTarnFWCmdGetConnAttrInfo>(call, {count, size}, read, id);
  }
  return runAndRead<CTarnFWCmdGetConnAttrInfo>(call, {count, size}, read, connection);
}

// --- Attributes of a connection

FWStatus_t FW_CreateConnectionAttr(fwlibhandle_* handle, const dvs_port_* port, void*,
                                   const FWConnection_* connection, std::uint64_t id,
                                   FWAttrOpType operation, fwconnattr_** command) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle&) -> FWStatus_t {
    if (command == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    auto made = connection == nullptr
                    ? std::make_shared<CTarnFWCmdSetConnAttr>(port, id, operation)
                    : std::make_shared<CTarnFWCmdSetConnAttr>(port, *connection, operation);
    *command = ConnAttrs::GetInstance().add(std::move(made));
    return FW_STATUS_OK;
  });
}

FWStatus_t FW_AddAttrSTR(fwconnattr_* command, FWAttrKeyID key, const char* value) {
  return onSteps<ConnAttrs>(here(__func__), command, [&](CTarnFWCmdSetConnAttr& found) {
    if (value == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    found.addAttribute(std::make_unique<CTarnFWL7Attribute>(key, std::string(value)));
    return FW_STATUS_OK;
  });
}

FWStatus_t FW_AddAttrINT(fwconnattr_* command, FWAttrKeyID key, std::int64_t value) {
  return addAttribute(here(__func__), command, key, static_cast<long>(value));
}

FWStatus_t FW_AddAttrUUID(fwconnattr_* command, FWAttrKeyID key, const std::uint8_t* uuid,
                          const char* text) {
  return onSteps<ConnAttrs>(here(__func__), command, [&](CTarnFWCmdSetConnAttr& found) {
    if (uuid == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    found.addAttribute(std::make_unique<CTarnFWL7Attribute>(key, uuidOf(uuid), orEmpty(text)));
    return FW_STATUS_OK;
  });
}

FWStatus_t FW_AddAttrSID(fwconnattr_* command, const fwattr_sid* sid) {
  return addSids(here(__func__), command, FW_ATTR_KEY_WIN_SID, sid, 1);
}

FWStatus_t FW_AddAttrMultiSID(fwconnattr_* command, const fwattr_sid* sids, unsigned int count) {
  return addSids(here(__func__), command, FW_ATTR_KEY_WIN_SID, sids, count);
}

FWStatus_t FW_AddAttrUserSID(fwconnattr_* command, const fwattr_sid* sid) {
  return addSids(here(__func__), command, FW_ATTR_KEY_USER_SID, sid, 1);
}

FWStatus_t FW_AddAttrProcessHash(fwconnattr_* command, std::uint64_t hash) {
  return addAttribute(here(__func__), command, FW_ATTR_KEY_PROCESS_HASH,
                      static_cast<unsigned long>(hash));
}

FWStatus_t FW_SetConnectionAttr(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                fwconnattr_* command) {
  return sendSteps<ConnAttrs>({__func__, handle, port, context}, command);
}

FWStatus_t FW_ReleaseConnectionAttr(fwconnattr_* command) {
  return releaseSteps<ConnAttrs>(here(__func__), command);
}

// --- Addresses of a domain

FWStatus_t FW_CreateDomain2IPHandle(fwlibhandle_* handle, const dvs_port_* port, void*,
                                    const std::uint8_t* uuid, const char* name,
                                    fwdomain2ip_** domain) {
  return callLibrary(__func__, handle, [&](CTarnFWLibHandle&) -> FWStatus_t {
    if (uuid == nullptr || domain == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    auto attribute =
        std::make_unique<CTarnFWL7Attribute>(FW_ATTR_KEY_FQDN, uuidOf(uuid), orEmpty(name));
    *domain = Domains::GetInstance().add(
        std::make_shared<CTarnFWCmdAddDomain2IPMapping>(port, std::move(attribute)));
    return FW_STATUS_OK;
  });
}

FWStatus_t FW_AddIPAddress(fwdomain2ip_* domain, const FWAddress_* address,
                           unsigned int timeToLive) {
  return onSteps<Domains>(here(__func__), domain, [&](CTarnFWCmdAddDomain2IPMapping& found) {
    if (address == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    auto made = CTarnFWAddressFactory::newFromMsgBuf(address);
    if (!made->isIPAddress()) return FW_STATUS_INVALID_ADDRESS;
    found.addAddress(std::move(made), timeToLive);
    return FW_STATUS_OK;
  });
}

FWStatus_t FW_SetDomain2IP(fwlibhandle_* handle, const dvs_port_* port, void* context,
                           fwdomain2ip_* domain) {
  return sendSteps<Domains>({__func__, handle, port, context}, domain);
}

FWStatus_t FW_ReleaseDomain2IPHandle(fwdomain2ip_* domain) {
  return releaseSteps<Domains>(here(__func__), domain);
}

}  // extern "C"
