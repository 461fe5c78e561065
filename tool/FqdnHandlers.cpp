#include <arpa/inet.h>

#include <cstdio>
#include <cstring>

#include "HandlerForm.h"
#include "Handlers.h"
#include "Records.h"
#include "TarnFWBootTime.h"
#include "TarnFWLog.h"

using namespace TarnFirewall;

namespace {

constexpr char kUsage[] = "Get fqdn records of a filter.\n\n" USAGE_OPTIONS USAGE_FILTER
                          "    -d          : delete all entries\n"
                          "    -v          : enable verbose log\n" USAGE_HELP;

/// Lines of this command name its handler, whichever function prints them.
constexpr char kHandler[] = "GetFqdnEntries";

/// Families whose addresses are four bytes: IPv4, and none yet.
bool isIPv4(std::uint8_t family) { return family == 0 || family == 2; }

/// The text of an entry's address.
struct AddressText {
  explicit AddressText(const FWFqdnEntry_& entry) {
    inet_ntop(isIPv4(entry.family) ? AF_INET : AF_INET6, entry.address.value, text, sizeof text);
  }
  char text[INET6_ADDRSTRLEN];
};

/// The entry after `before`, which is cleared in front of the first. Returns 0, or 1 after the
/// error line.
int nextEntry(const Target& target, bool isVerbose, const FWFqdnEntry_& before,
              FWFqdnEntry_* next) {
  const bool ipv4 = isIPv4(before.family);
  if (isVerbose)
    printWith(stdout, ipv4 ? "DEBUG: %s: Getting V4 address\n" : "DEBUG: %s: Getting V6 address\n",
              kHandler);
  const FWStatus_t status = (ipv4 ? FW_GetFqdnEntriesV4 : FW_GetFqdnEntriesV6)(
      target.handle, target.port, nullptr, before.address, before.family, next);
  if (status != FW_STATUS_OK) return outcome(status, "ERROR: failed to fqdn entries: %s\n");
  if (isVerbose) {
    const AddressText address(*next);
    if (isIPv4(next->family))
      std::printf("DEBUG: %s: Response is here, IPv4 %s\n", kHandler, address.text);
    else
      std::printf("DEBUG: %s: Response is here, IPv6 %s\n", kHandler, address.text);
    std::printf("DEBUG: %s: Number of uuid %d\n", kHandler, static_cast<int>(next->uuidCount));
  }
  return 0;
}

void printEntry(const FWFqdnEntry_& entry, const FWUuidItem_* items, unsigned int count) {
  std::printf("Fqdn IP %s\n", AddressText(entry).text);
  const FWLocalTime_ t = bootsec2local(entry.startTime);
  std::printf("  # start_time : %04d-%02d-%02dT%02d:%02d:%02d\n", t.year, t.month, t.day, t.hour,
              t.minute, t.second);
  if (entry.infinite != 0)
    std::printf("  # ttl : Infinite\n");
  else
    std::printf("  # ttl : %u\n", std::uint32_t{entry.timeToLive});
  for (unsigned int i = 0; i < count; ++i) std::printf("     UUID -- %s\n", items[i].text);
  std::printf("\n");
}

/// Shows an entry with its identifiers; one that has none is left out.
int showEntry(const Target& target, bool isVerbose, const FWFqdnEntry_& entry) {
  const std::uint32_t count = entry.uuidCount;
  if (count == 0) return 0;
  const auto items = makeRecords<FWUuidItem_>(count);
  if (items == nullptr) return error("ERROR: %s: no memory for getting uuid\n", kHandler);
  unsigned int returned = 0;
  const FWStatus_t status = FW_GetUuid(target.handle, target.port, nullptr, &entry.address, count,
                                       items.get(), &returned);
  if (status != FW_STATUS_OK) return outcome(status, "ERROR: failed to uuid: %s\n");
  if (isVerbose) std::printf("DEBUG: %s: uuid TO PRINT %d\n", kHandler, static_cast<int>(returned));
  printEntry(entry, items.get(), returned);
  return 0;
}

int listEntries(const Target& target, bool isVerbose) {
  unsigned int entries = 0;
  unsigned int uuids = 0;
  const FWStatus_t status = FW_GetFqdnCount(target.handle, target.port, nullptr, &entries, &uuids);
  if (status != FW_STATUS_OK)
    return outcome(status, "ERROR: failed to get fqdn total entries: %s\n");
  if (entries == 0) {
    std::printf("No fqdn entry.\n");
    return 0;
  }
  std::printf("Total fqdn entries: %d\n", static_cast<int>(entries));
  std::printf("Total number of uuid entries: %d\n", static_cast<int>(uuids));

  FWFqdnEntry_ before{};
  for (unsigned int i = 0; i < entries; ++i) {
    const auto next = makeRecords<FWFqdnEntry_>(1);
    if (next == nullptr) return error("ERROR: %s: no memory for getting fqdn records\n", kHandler);
    if (const int failed = nextEntry(target, isVerbose, before, next.get())) return failed;
    // A kernel that answers with the entry before would do so for as many as it counted.
    if (std::memcmp(&before.address, &next[0].address, sizeof before.address) == 0 &&
        before.family == next[0].family) {
      TARNFW_WARNING("fqdn entry %u of %u is the one before it\n", i + 1, entries);
      return 0;
    }
    if (const int failed = showEntry(target, isVerbose, next[0])) return failed;
    before = next[0];
  }
  return 0;
}

}  // namespace

int GetFqdnEntries(const char* cmd, int argc, char** argv) {
  bool deletes = false;
  bool isVerbose = false;
  return onFilter(cmd, argc, argv,
                  {.usage = kUsage,
                   .letters = "hf:d::v::",
                   .own = {{'d', &deletes}, {'v', &isVerbose}},
                   .announces = false,
                   .raisesLibraryLevel = false,
                   .libraryFailure = {.text = "ERROR: Library handle init failure.\n"}},
                  [&](const Target& target) {
                    if (!deletes) return listEntries(target, isVerbose);
                    int result = 0;
                    return outcome(FW_DeleteFqdnTree(target.handle, target.port, nullptr, &result),
                                   "ERROR: failed to delete fqdn entries: %s\n");
                  });
}
