#include <algorithm>
#include <cstdio>
#include <cstring>

#include "HandlerForm.h"
#include "Handlers.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

constexpr char kConfigUsage[] =
    "Get LB configuration.\n\n" USAGE_OPTIONS USAGE_FILTER
    "    -i <number> : lbs ID\n"
    "    -u <UUID>   : lbs UUID\n"
    "    -c          : active lbs only\n"
    "    -a          : both active and stale lbs\n"
    "    -d          : display more info\n" USAGE_VERBOSE USAGE_COMPONENT USAGE_HELP;

constexpr char kStatUsage[] =
    "Get LB statistics.\n\n" USAGE_OPTIONS USAGE_FILTER
    "    -l <UUID>   : lbs UUID\n"
    "    -u <UUID>   : virtual server or pool UUID\n"
    "    -s          : virtual server statistics\n"
    "    -p          : pool statistics\n"
    "    -d          : display more info\n"
    "    -z          : reset the stats to zero\n" USAGE_VERBOSE USAGE_COMPONENT USAGE_HELP;

constexpr option kConfigWords[] = {kHelpWord,
                                   kVerboseWord,
                                   kFilterWord,
                                   {"id", required_argument, nullptr, 'i'},
                                   {"uuid", required_argument, nullptr, 'u'},
                                   {"current", no_argument, nullptr, 'c'},
                                   {"all", no_argument, nullptr, 'a'},
                                   {"debug", no_argument, nullptr, 'd'},
                                   kLastWord};

// The word of -l has a blank in its name: scripts quote it.
constexpr option kStatWords[] = {kHelpWord,
                                 kVerboseWord,
                                 kFilterWord,
                                 {"lbs uuid", required_argument, nullptr, 'l'},
                                 {"vs", no_argument, nullptr, 's'},
                                 {"pool", no_argument, nullptr, 'p'},
                                 {"uuid", required_argument, nullptr, 'u'},
                                 {"zero", no_argument, nullptr, 'z'},
                                 {"debug", no_argument, nullptr, 'd'},
                                 kLastWord};

bool isUuid(const char* text) {
  std::uint8_t uuid[16];
  return normalstr2uuid(uuid, text);
}

/// Puts a text into its field, cut to leave a NUL.
template <std::size_t N>
void putText(char (&field)[N], const char* text) {
  const std::size_t length = std::min(std::strlen(text), N - 1);
  std::memset(field, 0, N);
  std::memcpy(field, text, length);
}

/// An option that sets a flag of a record.
OwnOption flagOption(char letter, std::uint8_t* flags, std::uint8_t flag) {
  return {letter, [=](const char*, const Target&) {
            *flags = static_cast<std::uint8_t>(*flags | flag);
            return kGoOn;
          }};
}

int takeId(FWLBConfigSize_& sizes, const char* text) {
  int id = 0;
  if (!decimalOption(text, &id) || id < 0) return error("ERROR: bad lbs id %s\n", text);
  sizes.id = static_cast<std::uint32_t>(id);
  sizes.flags |= kLBById;
  return kGoOn;
}

int takeUuid(FWLBConfigSize_& sizes, const char* text) {
  if (!isUuid(text)) return error("ERROR: bad uuid %s\n", text);
  putText(sizes.uuid, text);
  sizes.flags |= kLBByUuid;
  return kGoOn;
}

int showConfig(const Target& target, FWLBConfigSize_& sizes) {
  if (FW_GetLBConfigSize(target.handle, target.port, nullptr, &sizes) != FW_STATUS_OK)
    return error("ERROR: Failed to get LB info size\n");
  if (FW_GetLBConfig(target.handle, target.port, nullptr, &sizes) != FW_STATUS_OK)
    return error("ERROR: Failed to get LB info\n");
  return 0;
}

/// What `getlbstat` was asked for. The texts are those of the options: a reply may have others.
struct Statistics {
  FWLBStat_ stat{};
  const char* service = nullptr;
  const char* entry = "";

  bool has(std::uint8_t flag) const { return (stat.flags & flag) != 0; }

  /// The word of what the second identifier names.
  const char* kind(bool virtualServers) const { return virtualServers ? "virtual server" : "pool"; }

  int takeService(const char* text, const Target&) {
    if (!isUuid(text)) return std::printf("lbs %s is not valid\n", text), 1;
    service = text;
    putText(stat.lbsUuid, text);
    stat.flags |= kLBStatByLbs;
    return kGoOn;
  }

  /// Before -s or -p nothing says what the identifier names, and it is not kept.
  int takeEntry(const char* text, const Target&) {
    if (!isUuid(text))
      return std::printf("%s %s is not valid\n", kind(has(kLBStatVirtualServers)), text), 1;
    if (!has(kLBStatVirtualServers | kLBStatPools)) return kGoOn;
    entry = text;
    putText(stat.uuid, text);
    stat.flags |= kLBStatByUuid;
    return kGoOn;
  }
};

int checkStatistics(const Statistics& wanted) {
  if (wanted.service == nullptr) return error("ERROR: Please specify lbs UUID\n");
  const bool virtualServers = wanted.has(kLBStatVirtualServers);
  const bool pools = wanted.has(kLBStatPools);
  if (!virtualServers && !pools) return error("ERROR: Please specify vs or pool flag\n");
  if (virtualServers && pools) return error("ERROR: Invalid, both vs and pool flag are set\n");
  return kGoOn;
}

void showCounts(const FWLBStat_& stat) {
  const std::uint32_t pools = stat.pools;
  std::printf("vs cnt: %d, pool cnt: %d\n", static_cast<int>(stat.virtualServers),
              static_cast<int>(pools));
  std::printf("pm cnt: %s", pools > 0 ? "" : "0");
  for (std::uint32_t i = 0; i < std::min<std::uint32_t>(pools, kLBPools); ++i)
    std::printf("%d ", static_cast<int>(stat.memberCounts[i]));
  std::printf("\n");
}

int clear(const Target& target, FWLBStat_& stat) {
  stat.size = sizeof stat;
  return FW_ClearLBStat(target.handle, target.port, nullptr, &stat) == FW_STATUS_OK
             ? 0
             : error("ERROR: Failed to clear LB stat\n");
}

int fetch(const Target& target, FWLBStat_& stat, bool withCounts) {
  if (FW_GetLBStatSize(target.handle, target.port, nullptr, &stat) != FW_STATUS_OK)
    return error("ERROR: Failed to get LB stat size\n");
  if (withCounts) showCounts(stat);
  if (FW_GetLBStat(target.handle, target.port, nullptr, &stat) != FW_STATUS_OK)
    return error("ERROR: Failed to get LB stat\n");
  return 0;
}

int showStatistics(const Target& target, Statistics& wanted) {
  const bool virtualServers = wanted.has(kLBStatVirtualServers);
  const bool withCounts = wanted.has(kLBStatDebug);
  const int status = wanted.has(kLBStatReset) ? clear(target, wanted.stat)
                                              : fetch(target, wanted.stat, withCounts);
  if (wanted.has(kLBStatNoLbs)) std::printf("lbs %s is not valid\n", wanted.service);
  if (wanted.has(kLBStatNoEntry))
    std::printf("%s %s is not valid\n", wanted.kind(virtualServers), wanted.entry);
  return status;
}

}  // namespace

int GetLBConfig(const char* cmd, int argc, char** argv) {
  FWLBConfigSize_ sizes{};
  const auto id = [&](const char* value, const Target&) { return takeId(sizes, value); };
  const auto uuid = [&](const char* value, const Target&) { return takeUuid(sizes, value); };
  return onFilter(cmd, argc, argv,
                  {.usage = kConfigUsage,
                   .letters = "hv::m:f:i:u:cad",
                   .words = kConfigWords,
                   .own = {{'i', id},
                           {'u', uuid},
                           flagOption('c', &sizes.flags, kLBActive),
                           flagOption('a', &sizes.flags, kLBAll),
                           flagOption('d', &sizes.flags, kLBDebug)},
                   .missing = {.usage = false},
                   .prints = true},
                  [&](const Target& target) { return showConfig(target, sizes); });
}

int GetLBStat(const char* cmd, int argc, char** argv) {
  Statistics wanted;
  const auto service = [&](const char* value, const Target& target) {
    return wanted.takeService(value, target);
  };
  const auto entry = [&](const char* value, const Target& target) {
    return wanted.takeEntry(value, target);
  };
  std::uint8_t* const flags = &wanted.stat.flags;
  return onFilter(cmd, argc, argv,
                  {.usage = kStatUsage,
                   .letters = "hv::m:f:u:l:spdz",
                   .words = kStatWords,
                   .own = {{'l', service},
                           {'u', entry},
                           flagOption('s', flags, kLBStatVirtualServers),
                           flagOption('p', flags, kLBStatPools),
                           flagOption('d', flags, kLBStatDebug),
                           flagOption('z', flags, kLBStatReset)},
                   .missing = {.usage = false},
                   .check = [&](const Target&) { return checkStatistics(wanted); },
                   .prints = true},
                  [&](const Target& target) { return showStatistics(target, wanted); });
}
