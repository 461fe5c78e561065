// The configuration of address sets: their statistics, and the valid marks of their addresses.

#include <arpa/inet.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "AddrSetDisplay.h"
#include "HandlerForm.h"
#include "Handlers.h"
#include "Records.h"

using namespace TarnFirewall;

namespace {

constexpr char kUsage[] =
    "Enable/disable addreset stats collection for a filter.\n\n"
    "Usage: tarnioctl %s <options> <cmd>\n" USAGE_FILTER
    "    -a <string> : addrset name\n"
    "    -i <ipaddr> : IP address\n"
    "    -v <number> : enable verbose log\n" USAGE_COMPONENT USAGE_HELP
    "    cmd:\n"
    "    enablestats  : enable addrset stat collection\n"
    "    disablestats : disable addrset stat collection\n"
    "    display      : show stat collection status\n"
    "    setvalid     : set valid flag bit for <ipaddr> within <addrset>\n"
    "    clearvalid   : clear valid flag bit for <ipaddr> within <addrset>\n"
    "    getvalid     : get valid flags for entries within <addrset>\n";

constexpr std::size_t kMaxSetName = 37;
constexpr std::size_t kMaxAddress = 46;

/// Not an operation of the kernel: the marks are read by a command of their own.
constexpr std::uint32_t kGetValid = 7;

struct Word {
  const char* text;
  std::uint32_t operation;
};

constexpr Word kWords[] = {
    {"enablestats", FW_ADDRSET_ENABLE_STATS}, {"disablestats", FW_ADDRSET_DISABLE_STATS},
    {"unsetstats", FW_ADDRSET_UNSET_STATS},  // not in the usage text
    {"display", FW_ADDRSET_DISPLAY},          {"setvalid", FW_ADDRSET_SET_VALID},
    {"clearvalid", FW_ADDRSET_CLEAR_VALID},   {"getvalid", kGetValid},
};

/// What the command line asks for.
struct Request {
  const char* word;  // the last argument as it was typed
  const char* set = nullptr;
  const char* address = nullptr;
  std::uint32_t operation = 0;
  FWAddrSetCfg_ configuration{};

  bool marks() const {
    return operation == FW_ADDRSET_SET_VALID || operation == FW_ADDRSET_CLEAR_VALID;
  }
};

/// Reads an address into the request: the family stands in front of its bytes, as in the record of
/// an address.
bool takeAddress(Request& request) {
  const bool colons = std::strchr(request.address, ':') != nullptr;
  request.configuration.component = colons ? FW_AF_INET6 : FW_AF_INET;
  return inet_pton(colons ? AF_INET6 : AF_INET, request.address, request.configuration.address) ==
         1;
}

/// The step that finds the word and what it needs.
int takeWord(Request& request, const Target& target) {
  if (target.options.operandCount() == 0) return target.usage.error("ERROR: command is missing.\n");
  const auto* const found =
      std::find_if(std::begin(kWords), std::end(kWords),
                   [&](const Word& one) { return std::strcmp(one.text, request.word) == 0; });
  if (found == std::end(kWords)) return target.usage(1);
  request.operation = found->operation;
  request.configuration.operation = found->operation;
  if (request.set != nullptr)
    std::memcpy(request.configuration.name.text, request.set, std::strlen(request.set));

  if (request.operation == kGetValid && request.set == nullptr)
    return error("ERROR: must specify an addrset to read valid flags\n");
  if (!request.marks()) return kGoOn;
  if (request.set == nullptr || request.address == nullptr) {
    return error(
        "ERROR: must specify an addrset and ipaddress when setting or clearing valid flag\n");
  }
  return takeAddress(request) ? kGoOn : error("ERROR: invalid ip address.\n");
}

/// Shows the marks of all addresses of a set. The status is 1 in every case: scripts know it so.
int showMarks(const Request& request, const Target& target) {
  const FWAddrSetID_t& id = request.configuration.name;
  unsigned int type = 0;
  unsigned int asked = 0;
  unsigned int size = 0;
  if (GetContainerTypeAndSize(target.handle, target.port, id, &type, &asked, &size) != 0) return 1;
  if (type != kAddrSetType) return 1;
  if (asked == 0) {
    std::printf("%s%s {\n}\n", "addrset ", request.set);
    return 1;
  }
  const auto marks = makeRecords<FWAddressValid_>(asked);
  if (marks == nullptr) return error("ERROR: no memory for addrset %s\n", request.set);
  unsigned int count = 0;
  const FWStatus_t status = FW_GetAddrValidOfAddrSet(target.handle, target.port, nullptr, &id,
                                                     asked, 0, marks.get(), &count);
  if (status != FW_STATUS_OK) {
    return error("ERROR: failed to get addrv of addrset %s: %s\n", request.set,
                 FW_StatusToString(status));
  }
  if (count == 0) {
    std::printf("there is no address in addrset %s.\n", request.set);
    return 1;
  }
  std::printf("%s%s {\n", "addrset ", request.set);
  for (unsigned int i = 0; i < std::min(count, asked); ++i) {
    const auto address = loadRecord<FWAddress_>(marks[i].address);
    char text[64] = {};
    if (FW_GetAddressString(&address, 1, text, sizeof text) != FW_STATUS_OK) continue;
    std::printf("%s   dlb_valid_cnt = 0x%02x,\n", text, marks[i].validCount);
  }
  std::printf("}\n");
  return 1;
}

constexpr std::uint32_t kUnset = 0;
constexpr std::uint32_t kEnabled = 1;

const char* stateOfFilter(std::uint32_t state) {
  return state == kEnabled ? "enabled" : "disabled";
}

const char* stateOfSet(std::uint32_t state) {
  return state == kUnset ? "unset" : stateOfFilter(state);
}

int configure(Request& request, const Target& target) {
  FWAddrSetCfg_& configuration = request.configuration;
  if (FW_SetAddrSetCfg(target.handle, target.port, nullptr, &configuration) != FW_STATUS_OK)
    return error("ERROR: Failed to set addrset config for filter %s.\n", target.filter.name);
  const std::uint32_t first = configuration.first;
  const std::uint32_t second = configuration.second;
  if (request.marks()) {
    std::printf("kentry valid field changed from 0x%x to 0x%x\n", first, second);
  } else if (request.operation == FW_ADDRSET_DISPLAY && request.set != nullptr) {
    std::printf("kif stats = %s, addrset %s stats = %s\n", stateOfFilter(first), request.set,
                stateOfSet(second));
  } else if (request.operation == FW_ADDRSET_DISPLAY) {
    std::printf("kif stats = %s\n", stateOfFilter(first));
  }
  return 0;
}

}  // namespace

int SetAddrSetCfg(const char* cmd, int argc, char** argv) {
  // The walk over the options moves operands to the end, so the last argument is taken first.
  Request request{argv[argc - 1]};
  return onFilter(cmd, argc, argv,
                  {.usage = kUsage,
                   .letters = "hv:f:a:i:m:",
                   .own = {{'a', &request.set, kMaxSetName, "ERROR: invalid addrset name %s\n"},
                           {'i', &request.address, kMaxAddress, "ERROR: invalid ipaddr %s\n"}},
                   .check = [&](const Target& target) { return takeWord(request, target); }},
                  [&](const Target& target) {
                    return request.operation == kGetValid ? showMarks(request, target)
                                                          : configure(request, target);
                  });
}
