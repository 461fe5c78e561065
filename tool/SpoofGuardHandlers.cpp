#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <cstdio>

#include "AddrSetDisplay.h"
#include "HandlerForm.h"
#include "Handlers.h"

using namespace TarnFirewall;

namespace {

constexpr char kUsage[] = "Get spoofguard setting of a filter.\n\n" USAGE_OPTIONS USAGE_FILTER
    USAGE_VERBOSE USAGE_COMPONENT "    -s          : print statistics\n" USAGE_HELP;

constexpr option kWords[] = {
    kFilterWord, kHelpWord, {"stat", no_argument, nullptr, 's'}, kVerboseWord, kLastWord};

constexpr unsigned int kMostAddresses = 1024;

std::array<char, INET6_ADDRSTRLEN> ipText(int family, const FWAddress_& address) {
  std::array<char, INET6_ADDRSTRLEN> text{};
  inet_ntop(family, address.value, text.data(), text.size());
  return text;
}

/// An address set with its members while the guard works; its name otherwise. What cannot be read
/// is reported and left out.
void printSet(const Target& target, const FWAddrSetID_t& id, bool enabled) {
  if (!enabled) {
    std::printf("IPSet        : %s\n", fieldText(id.text).c_str());
    return;
  }
  unsigned int type = 0;
  unsigned int members = 0;
  unsigned int size = 0;
  if (GetContainerTypeAndSize(target.handle, target.port, id, &type, &members, &size) == 0)
    GetSingleAddrSet(target.handle, target.port, id, "IPSet        : ", {});
}

void printEntry(const Target& target, const FWAddress_& address, bool enabled) {
  if (address.type == FW_ADDRESS_IPV4)
    std::printf("IPv4 Address : %s\n", ipText(AF_INET, address).data());
  else if (address.type == FW_ADDRESS_IPV6)
    std::printf("IPv6 Address : %s\n", ipText(AF_INET6, address).data());
  else
    printSet(target, loadRecord<FWAddrSetID_t>(address.value), enabled);
}

int showGuard(const Target& target) {
  unsigned int enabled = 0;
  std::uint8_t mac[6] = {};
  unsigned int count = kMostAddresses;
  FWAddress_ addresses[kMostAddresses] = {};
  const FWStatus_t status =
      FW_CheckSpoofGuard(target.handle, target.port, nullptr, &enabled, mac, &count, addresses);
  if (status != FW_STATUS_OK)
    return outcome(status, "ERROR: unable to get Spoofguard information: %s.\n");
  std::printf("%s", enabled != 0 ? "Spoofguard Enabled.\n" : "Spoofguard Disabled.\n");
  for (unsigned int i = 0; i < std::min(count, kMostAddresses); ++i)
    printEntry(target, addresses[i], enabled != 0);
  std::printf("MAC Address  : %02x:%02x:%02x:%02x:%02x:%02x\n", mac[0], mac[1], mac[2], mac[3],
              mac[4], mac[5]);
  return 0;
}

int showStatistics(const Target& target) {
  FW_SetLibPrettyPrinting(pretty_printing, stdout);
  if (FW_GetSpoofGuardStat(target.handle, target.port, nullptr) != FW_STATUS_OK)
    return error("ERROR: Failed to get Spoofguard stat\n");  // the printer stays in this case only
  FW_SetLibPrettyPrinting(nullptr, nullptr);
  return 0;
}

}  // namespace

int GetSpoofGuard(const char* cmd, int argc, char** argv) {
  bool statistics = false;
  // Without a filter it ends with 0, unlike its neighbours: scripts depend on it.
  return onFilter(cmd, argc, argv,
                  {.usage = kUsage,
                   .letters = "hv::m:f:s",
                   .words = kWords,
                   .own = {{'s', &statistics}},
                   .missing = {.status = 0}},
                  [&](const Target& target) {
                    return statistics ? showStatistics(target) : showGuard(target);
                  });
}
