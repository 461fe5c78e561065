#include <arpa/inet.h>

#include <algorithm>
#include <cstdio>

#include "Devices.h"
#include "DiscoveryRecords.h"
#include "HandlerForm.h"
#include "Handlers.h"
#include "Records.h"
#include "TarnFWLog.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

constexpr char kGetUsage[] =
    "Get discovered IPs of a filter.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_HELP;

// "discoverd" has always stood here.
constexpr char kSetUsage[] =
    "Set IP discovery related configuration of a filter.\n\n" USAGE_OPTIONS USAGE_FILTER
    "    -d          : enable DHCP based discovery\n"
    "    -a          : enable ARP based discovery\n"
    "    -t <number> : timeout for entries discoverd by ARP snooping in seconds"
    " (default 2 hours, 7200)\n"
    "    -l <number> : maximum number of ARP snooped entries permitted (max 128)\n" USAGE_HELP;

constexpr char kClearUsage[] =
    "Clear discovered IPs of a filter.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_HELP;

constexpr int kDefaultMaximum = 1;
constexpr int kDefaultTimeout = 7200;

FWIpDiscovery_ requestFor(const Target& target, FWDiscoveryOperation operation) {
  FWIpDiscovery_ request{};
  Strncpy(request.name, target.filter.name, sizeof request.name);
  request.operation = operation;
  return request;
}

std::uint64_t entriesOf(const FWIpDiscovery_& reply) {
  return std::uint64_t{reply.ipv4Count} + reply.ipv6Count;
}

void PrintIpDiscStats(const FWIpDiscovery_& reply) {
  constexpr struct {
    std::uint32_t bit;
    const char* text;
  } kFeatures[] = {{FW_DISCOVERY_DHCP, "(DHCP snooping)"},
                   {FW_DISCOVERY_ARP, " (ARP snooping)"},
                   {FW_DISCOVERY_DHCPV6, " (DHCPv6 snooping)"},
                   {FW_DISCOVERY_ND, " (ND snooping)"}};
  const std::uint32_t features = reply.features;
  std::printf("Features Enabled : %08X : ", features);
  for (const auto& feature : kFeatures)
    if ((features & feature.bit) != 0) std::fputs(feature.text, stdout);
  std::printf("\n");
  if ((features & FW_DISCOVERY_ARP) != 0) {
    std::printf("Arp Timeout : %u\n", std::uint32_t{reply.arpTimeout});
    std::printf("Maximum Arp Entries : %u\n", std::uint32_t{reply.maxArpEntries});
  }
  std::printf("Number of Adds so far : %lu\n", std::uint64_t{reply.adds});
  std::printf("Number of Deletes so far : %lu\n", std::uint64_t{reply.deletes});
  std::printf("Last updated time : %lu\n", std::uint64_t{reply.lastUpdated});
}

const char* sourceText(bool ipv4, std::uint8_t source) {
  constexpr const char* kTexts[2][2] = {{"(DHCP snooping)", "(ND snooping)"},
                                        {"(DHCP snooping)", "(ARP snooping)"}};
  const int place = source - (ipv4 ? 1 : 3);
  return place == 0 || place == 1 ? kTexts[ipv4][place] : "(Unknown source)";
}

void printEntry(int number, const FWIpDiscoveryEntry_& entry) {
  const bool ipv4 = entry.isIpv4 != 0;
  char address[INET6_ADDRSTRLEN];
  inet_ntop(ipv4 ? AF_INET : AF_INET6, entry.address, address, sizeof address);
  std::printf("\t[%d] vlan = %u  mac = %02x:%02x:%02x:%02x:%02x:%02x  IP = %s %s\n", number,
              unsigned{std::uint16_t{entry.vlan}}, entry.mac[0], entry.mac[1], entry.mac[2],
              entry.mac[3], entry.mac[4], entry.mac[5], address, sourceText(ipv4, entry.source));
}

void printCount(const Target& target, std::uint64_t count) {
  std::printf("Entries found for %s: %d\n", target.filter.name, static_cast<int>(count));
}

/// A request that fails leaves the counts of its record at 0: it reports no entries.
int showDiscovered(const Target& target, bool withStats) {
  FWIpDiscovery_ counts = requestFor(target, FW_DISCOVERY_COUNTS);
  directRequest(kFirewall, FW_REQUEST_DISCOVERED_IPS, counts);
  const std::uint64_t known = entriesOf(counts);
  if (known == 0) {
    if (withStats) PrintIpDiscStats(counts);
    printCount(target, 0);
    return 0;
  }

  // The kernel takes the size in 32 bits.
  constexpr std::uint32_t kEach = sizeof(FWIpDiscoveryEntry_);
  Records<FWIpDiscoveryEntry_> entries;
  if (itemsFit(known, kEach, UINT32_MAX)) entries = makeRecords<FWIpDiscoveryEntry_>(known);
  if (entries == nullptr)
    return error("ERROR: no memory for getting %d IP entries\n", static_cast<int>(known));

  FWIpDiscovery_ list =
      requestFor(target, withStats ? FW_DISCOVERY_ENTRIES_AND_STATS : FW_DISCOVERY_ENTRIES);
  list.bufferLength = static_cast<std::uint32_t>(known) * kEach;
  list.buffer = addressOf(entries.get());
  directRequest(kFirewall, FW_REQUEST_DISCOVERED_IPS, list);
  if (withStats) PrintIpDiscStats(list);

  // There may be more of them by now; the buffer holds no more than were counted before.
  const std::uint64_t returned = entriesOf(list);
  if (returned > known)
    TARNFW_WARNING("%lu IP entries returned for room of %lu\n", returned, known);
  const auto count = static_cast<std::uint32_t>(std::min(returned, known));
  printCount(target, count);
  for (std::uint32_t i = 0; i < count; ++i) printEntry(static_cast<int>(i + 1), entries[i]);
  return 0;
}

}  // namespace

int GetIpDisc(const char* cmd, int argc, char** argv) {
  bool withStats = false;
  return onFilter(
      cmd, argc, argv,
      {.usage = kGetUsage, .letters = "hf:s", .own = {{'s', &withStats}}, .opensLibrary = false},
      [&](const Target& target) { return showDiscovered(target, withStats); });
}

int SetIpDisc(const char* cmd, int argc, char** argv) {
  bool dhcp = false;
  bool arp = false;
  int maximum = kDefaultMaximum;
  int timeout = kDefaultTimeout;
  const auto takeMaximum = [&](const char* value, const Target&) {
    constexpr int kMost = kMaxDiscoveredIps;
    if (decimalOption(value, &maximum) && maximum >= 0 && maximum <= kMost) return kGoOn;
    return error("ERROR: Maximum ARP VMI entries should between 0 and %d\n", kMost);
  };
  const auto takeTimeout = [&](const char* value, const Target& target) {
    if (decimalOption(value, &timeout) && timeout >= 0) return kGoOn;
    return target.usage.error("ERROR: invalid ARP timeout %s\n", value);
  };
  return onFilter(cmd, argc, argv,
                  {.usage = kSetUsage,
                   .letters = "hf:dal:t:",
                   .own = {{'d', &dhcp}, {'a', &arp}, {'l', takeMaximum}, {'t', takeTimeout}},
                   .badOption = 0,
                   .opensLibrary = false},
                  [&](const Target& target) {
                    FWIpDiscovery_ request = requestFor(target, FW_DISCOVERY_SET);
                    request.features =
                        (dhcp ? FW_DISCOVERY_DHCP : 0u) | (arp ? FW_DISCOVERY_ARP : 0u);
                    request.maxArpEntries = static_cast<std::uint32_t>(maximum);
                    request.otherEntries = kMaxDiscoveredIps - static_cast<std::uint32_t>(maximum);
                    request.arpTimeout = static_cast<std::uint32_t>(timeout);
                    directRequest(kFirewall, FW_REQUEST_SET_DISCOVERY, request);
                    return 0;
                  });
}

int ClearIpDisc(const char* cmd, int argc, char** argv) {
  return onFilter(cmd, argc, argv,
                  {.usage = kClearUsage, .letters = "hf:", .badOption = 0, .opensLibrary = false},
                  [](const Target& target) {
                    FWIpDiscovery_ request = requestFor(target, FW_DISCOVERY_CLEAR);
                    directRequest(kFirewall, FW_REQUEST_CLEAR_DISCOVERED_IPS, request);
                    return 0;
                  });
}
