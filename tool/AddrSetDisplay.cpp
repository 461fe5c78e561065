#include "AddrSetDisplay.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "HandlerCommon.h"
#include "Records.h"
#include "TarnFWBootTime.h"

using namespace TarnFirewall;

namespace {

/// The words in which the two kinds of sets differ.
struct Words {
  unsigned int type;
  const char* set;
  const char* members;  // what it holds, in the line about a failed reading
  const char* member;   // in the line about a set without any
};
constexpr Words kAddrSet = {kAddrSetType, "addrset", "address", "address"};
constexpr Words kContainer = {kContainerType, "container", "elements", "element"};

unsigned long number(const host64& value) { return static_cast<std::uint64_t>(value); }

/// The set that is shown.
struct Shown {
  fwlibhandle_* handle;
  const dvs_port_* port;
  const FWAddrSetID_t& id;
  const Words& words;
  const MemberStatistics& statistics;
  std::string name = fieldText(id.text);
};

int noMembers(const Shown& set) {
  std::printf("there is no %s in %s %s.\n", set.words.member, set.words.set, set.name.c_str());
  std::printf("}\n");  // without an open line: scripts know it so
  return 0;
}

int noMemory(const Shown& set) {
  return error("ERROR: no memory for %s %s\n", set.words.set, set.name.c_str());
}

/// Reads the statistics of `count` members, none when they are not wanted. A result is the status
/// that is to be returned at once.
std::optional<int> readStatistics(const Shown& set, unsigned int asked, unsigned int count,
                                  Records<FWAddressStat_>* stats) {
  if (!set.statistics.wanted) return std::nullopt;
  *stats = makeRecords<FWAddressStat_>(asked);
  if (*stats == nullptr)
    return error("ERROR: no memory for %s %s stats\n", set.words.set, set.name.c_str());
  unsigned int returned = 0;
  const FWStatus_t status =
      FW_GetAddressStatOfAddrSet(set.handle, set.port, nullptr, &set.id, asked, 0,
                                 set.statistics.clear, stats->get(), &returned);
  if (status != FW_STATUS_OK) {
    // The words of a failed reading of addresses, for containers too: scripts match them.
    return error("ERROR: failed to get address of %s %s: %s\n", set.words.set, set.name.c_str(),
                 FW_StatusToString(status));
  }
  if (returned == 0) {
    std::printf("there is no stats in %s %s.\n", set.words.set, set.name.c_str());
    std::printf("}\n");
    return 0;
  }
  if (returned != count)
    return error("ERROR: different size of %s %s detected\n", set.words.set, set.name.c_str());
  return std::nullopt;
}

void printHeader(const MemberStatistics& statistics) {
  if (!statistics.wanted || !statistics.header) return;
  std::printf("%32s : %16s %16s %16s %16s %8s %8s\n", "addr", "pkt[in][pass]", "pkt[in][drop]",
              "pkt[out][pass]", "pkt[out][drop]", "tcp curr", "tcp hwm");
  std::printf("%32s   %16s %16s %16s %16s %s\n", "", "bytes[in][pass]", "bytes[in][drop]",
              "bytes[out][pass]", "bytes[out][drop]", "uptime");
}

/// `stat` is null without statistics.
void printMember(const char* text, const FWAddressStat_* stat) {
  if (stat == nullptr) {
    std::printf("%s,\n", text);
    return;
  }
  std::printf("%32s : %16lu %16lu %16lu %16lu %8d %8d\n", text, number(stat->packetsInPass),
              number(stat->packetsInDrop), number(stat->packetsOutPass),
              number(stat->packetsOutDrop), static_cast<int>(stat->connections),
              static_cast<int>(stat->highWater));
  std::printf("%32s   %16lu %16lu %16lu %16lu %lu\n", "", number(stat->bytesInPass),
              number(stat->bytesInDrop), number(stat->bytesOutPass), number(stat->bytesOutDrop),
              number(stat->uptime));
}

const FWAddressStat_* at(const Records<FWAddressStat_>& stats, unsigned int index) {
  return stats != nullptr ? &stats[index] : nullptr;
}

/// Asks for type and number of members. A result is the status that is to be returned at once.
std::optional<int> readSize(const Shown& set, unsigned int* count, unsigned int* size) {
  unsigned int type = 0;
  const FWStatus_t status =
      FW_GetAddrSetTypeAndSize(set.handle, set.port, nullptr, &set.id, &type, count, size);
  if (status != FW_STATUS_OK) {
    return error("ERROR: failed to get size of %s %s: %s\n", set.words.set, set.name.c_str(),
                 FW_StatusToString(status));
  }
  if (type != set.words.type) return 0;
  return std::nullopt;
}

int membersFailed(const Shown& set, FWStatus_t status) {
  return error("ERROR: failed to get %s of %s %s: %s\n", set.words.members, set.words.set,
               set.name.c_str(), FW_StatusToString(status));
}

/// Texts from `malloc`, each of them and the array.
struct FreeTexts {
  unsigned int count = 0;
  void operator()(char** texts) const {
    for (unsigned int i = 0; i < count; ++i) std::free(texts[i]);
    std::free(texts);
  }
};

}  // namespace

int GetSingleAddrSet(fwlibhandle_* handle, const dvs_port_* port, const FWAddrSetID_t& id,
                     const char* prefix, const MemberStatistics& statistics) {
  const Shown set{handle, port, id, kAddrSet, statistics};
  unsigned int asked = 0;
  unsigned int size = 0;
  if (const auto status = readSize(set, &asked, &size)) return *status;
  if (asked == 0) {
    std::printf("%s%s {\n}\n", prefix, set.name.c_str());
    return 0;
  }
  const auto addresses = makeRecords<FWAddress_>(asked);
  if (addresses == nullptr) return noMemory(set);
  unsigned int count = 0;
  const FWStatus_t status =
      FW_GetAddressOfAddrSet(handle, port, nullptr, &id, asked, 0, addresses.get(), &count);
  if (status != FW_STATUS_OK) return membersFailed(set, status);
  if (count == 0) return noMembers(set);
  Records<FWAddressStat_> stats;
  if (const auto failed = readStatistics(set, asked, count, &stats)) return *failed;

  printHeader(statistics);
  std::printf("%s%s {\n", prefix, set.name.c_str());
  for (unsigned int i = 0; i < std::min(count, asked); ++i) {
    char text[64] = {};
    if (FW_GetAddressString(&addresses[i], 1, text, sizeof text) != FW_STATUS_OK) continue;
    printMember(text, at(stats, i));
  }
  std::printf("}\n");
  return 0;
}

int GetSingleContainer(fwlibhandle_* handle, const dvs_port_* port, const FWAddrSetID_t& id,
                       const char* prefix, const MemberStatistics& statistics) {
  const Shown set{handle, port, id, kContainer, statistics};
  unsigned int asked = 0;
  unsigned int size = 0;
  if (const auto status = readSize(set, &asked, &size)) return *status;
  if (asked == 0) {
    // Scripts find type, number and size in this line, and in no other.
    std::printf("%s%s (type %d, num %d size %d) {\n}\n", prefix, set.name.c_str(),
                static_cast<int>(kContainerType), static_cast<int>(asked), static_cast<int>(size));
    return 0;
  }
  const std::unique_ptr<char*[], FreeTexts> elements(
      static_cast<char**>(std::calloc(asked, sizeof(char*))), FreeTexts{asked});
  if (elements == nullptr) return noMemory(set);
  unsigned int count = 0;
  const FWStatus_t status =
      FW_GetElementsOfContainer(handle, port, nullptr, set.name.c_str(), FW_CONTAINER_ATTR_PROFILE,
                                asked, size, elements.get(), &count);
  if (status != FW_STATUS_OK) return membersFailed(set, status);
  if (count == 0) return noMembers(set);
  if (count != asked) {
    error("ERROR: mismatch in the number of elements: expected %d, returned %d.\n",
          static_cast<int>(asked), static_cast<int>(count));
  }
  Records<FWAddressStat_> stats;
  if (const auto failed = readStatistics(set, asked, count, &stats)) return *failed;

  printHeader(statistics);
  std::printf("%s%s {\n", prefix, set.name.c_str());
  unsigned int members = 0;
  std::uint64_t realized = 0;
  std::uint64_t generation = 0;
  if (FW_GetAddrSetInfo(handle, port, nullptr, &id, &members, &realized, &generation) ==
      FW_STATUS_OK) {
    const FWLocalTime_ time = bootsec2local(realized);
    std::printf("# generation number: %llu\n", static_cast<unsigned long long>(generation));
    std::printf("# realization time : %04d-%02d-%02dT%02d:%02d:%02d\n", time.year, time.month,
                time.day, time.hour, time.minute, time.second);
    for (unsigned int i = 0; i < count; ++i) printMember(elements[i], at(stats, i));
  }
  std::printf("}\n");
  return 0;
}

int GetSingleAddrSetInfo(fwlibhandle_* handle, const dvs_port_* port, const FWAddrSetID_t& id,
                         unsigned int type) {
  const std::string name = fieldText(id.text);
  std::printf("%s %s {\n", type == kContainerType ? "container" : "addrset", name.c_str());
  unsigned int count = 0;
  std::uint64_t realized = 0;
  std::uint64_t generation = 0;
  FW_SetLibPrettyPrinting(pretty_printing, stdout);
  const FWStatus_t status =
      FW_GetAddrSetInfo(handle, port, nullptr, &id, &count, &realized, &generation);
  FW_SetLibPrettyPrinting(nullptr, nullptr);
  if (status != FW_STATUS_OK) {
    // "addrset" for containers too: scripts match it.
    error("ERROR: failed to get info of addrset %s: %s\n", name.c_str(), FW_StatusToString(status));
  }
  std::printf("}\n");
  return status != FW_STATUS_OK ? 1 : 0;
}

int GetContainerTypeAndSize(fwlibhandle_* handle, const dvs_port_* port, const FWAddrSetID_t& id,
                            unsigned int* type, unsigned int* count, unsigned int* size) {
  const FWStatus_t status = FW_GetAddrSetTypeAndSize(handle, port, nullptr, &id, type, count, size);
  if (status == FW_STATUS_OK) return 0;
  return error("ERROR: failed to get size of addrset %s: %s\n", fieldText(id.text).c_str(),
               FW_StatusToString(status));
}

int PrintSingleAddrSetStat(const FWAddrSetStat_* stat) {
  if (stat == nullptr) return 1;
  // Eight counters, each u64: packets, then bytes, of in blocked, in passed, out blocked, out
  // passed. This display has always read them so, whatever the printing of the statistics command
  // calls them; scripts depend on both.
  enum : std::size_t { kInBlock, kInPass, kOutBlock, kOutPass, kBytes };
  const auto* const first = reinterpret_cast<const std::byte*>(stat) + sizeof(FWAddrSetID_t);
  const auto counter = [&](std::size_t index) {
    return number(loadRecord<host64>(first + 8 * index));
  };
  std::printf("%s:\n", fieldText(stat->name.text).c_str());
  std::printf("    in+pass   : %16lu  %16lu\n", counter(kInPass), counter(kBytes + kInPass));
  std::printf("    out+pass  : %16lu  %16lu\n", counter(kOutPass), counter(kBytes + kOutPass));
  std::printf("    in+block  : %16lu  %16lu\n", counter(kInBlock), counter(kBytes + kInBlock));
  std::printf("    out+block : %16lu  %16lu\n", counter(kOutBlock), counter(kBytes + kOutBlock));
  std::printf("    match     : %16lu\n", number(stat->match));
  std::printf("    nomatch   : %16lu\n", number(stat->noMatch));
  std::printf("    uptime    : %16lu\n", number(stat->uptime));
  std::printf("    anchor_ref: %u\n", static_cast<std::uint32_t>(stat->anchorReferences));
  std::printf("\n");
  return 0;
}
