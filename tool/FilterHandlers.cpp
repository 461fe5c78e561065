#include "FilterHandlers.h"

#include <strings.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <utility>

#include "Devices.h"
#include "HandlerForm.h"
#include "Handlers.h"
#include "TarnFWLog.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

int GetFilterList(bool oldRecord, bool countOnly, const char* agent, std::uint32_t* count,
                  FilterBuffer* buffer, std::uint32_t* bufferSize) {
  if (!countOnly && (buffer == nullptr || count == nullptr))
    return error("ERROR: Missing filterList argument\n");
  if (count != nullptr) *count = 0;
  if (buffer != nullptr) buffer->reset();
  if (bufferSize != nullptr) *bufferSize = 0;

  FWFilterList_ list{};
  if (agent != nullptr) Strncpy(list.name, agent, sizeof list.name);

  std::uint32_t status = 0;
  directRequest(kFirewall, FW_REQUEST_FILTER_COUNT, list, &status);
  if (status != 0)
    return error("ERROR: ioctl failed to get filter count: %d\n", static_cast<int>(status));

  const std::uint32_t known = list.count;
  if (countOnly) {
    std::printf("Total number of kernel filters: %u\n", known);
    return 0;
  }
  if (known == 0) return 0;

  // The kernel takes the size in 32 bits.
  const std::uint32_t recordSize = oldRecord ? sizeof(FWOldFilterRecord_) : sizeof(FWFilterRecord_);
  if (!itemsFit(known, recordSize, UINT32_MAX))
    return error("ERROR: invalid filter count: %d\n", static_cast<int>(known));
  FilterBuffer records(static_cast<std::byte*>(std::calloc(known, recordSize)));
  if (records == nullptr)
    return error("ERROR: no memory for getting filters: %d\n", static_cast<int>(known));

  list.bufferLength = known * recordSize;
  list.buffer = addressOf(records.get());
  directRequest(kFirewall, FW_REQUEST_FILTER_LIST, list, &status);
  if (status != 0)
    return error("ERROR: ioctl failed to get filters: %d\n", static_cast<int>(status));

  // The reply's numbers are the kernel's word; the buffer holds no more than was asked for.
  if (list.count > known || list.bufferLength > known * recordSize)
    TARNFW_WARNING("%u filters of %u bytes returned for room of %u\n",
                   static_cast<unsigned int>(list.count),
                   static_cast<unsigned int>(list.bufferLength), known);
  *count = std::min<std::uint32_t>(list.count, known);
  if (bufferSize != nullptr)
    *bufferSize = std::min<std::uint32_t>(list.bufferLength, known * recordSize);
  *buffer = std::move(records);
  return 0;
}

namespace {

enum FilterCounter : unsigned int {
  kTime = 0,  // each a pair: from switch, to switch
  kPackets = 2,
  kSlowTime = 4,
  kFromSlowPath = 6,
  kFromWeirgate = 8,
  kPunted = 10,
  kCopied = 12,
  kFailurePolicy = 14,
  kFirstReject = 16,
  kFirstRbe = 28,
};

constexpr const char* kRejectNames[] = {
    "Bad L2",  "Bad Ethernet", "Non IP",          "Short IP",     "Bad IPv4",     "Bad IPv6",
    "Bad TCP", "Bad ICMP",     "Rst for TCP Rst", "Rate Limited", "Failed Alloc", "Failed Other",
};
constexpr const char* kRateNames[] = {
    "Current",         "Max (in window)", "Avg (in window)",
    "High Water Mark", "Active Conn",     "High Water Mark Conn",
};
constexpr const char* kRbeNames[] = {"RBE In Pkt", "RBE Out Pkt", "RBE In Drop", "RBE Out Drop"};

// By bit. A set bit switches the kind off; only the last one is on when set.
constexpr const char* kFlowFlagNames[] = {
    "L2 Pass Flows",   "L2 Drop Flows", "L3 Drop Flows",   "L3 Inactive Flows",
    "L3 Active Flows", "All Flows",     "Global override",
};
constexpr unsigned int kGlobalOverride = 6;

void printField(const char* name, const char* value) { std::printf("%-24s : %s\n", name, value); }
void printField(const char* name, int value) { std::printf("%-24s : %d\n", name, value); }
void printField(const char* name, const std::string& value) { printField(name, value.c_str()); }

void printUnlessEmpty(const char* name, const std::string& value) {
  if (!value.empty()) printField(name, value);
}

void printCount(const char* name, std::uint64_t value) {
  std::printf("   %-21s : %lld\n", name, static_cast<long long>(value));
}

void printPair(const char* name, std::uint64_t fromSwitch, std::uint64_t toSwitch) {
  std::printf("   %-21s : %lld %lld\n", name, static_cast<long long>(fromSwitch),
              static_cast<long long>(toSwitch));
}

std::uint64_t quotient(std::uint64_t dividend, std::uint64_t divisor) {
  return divisor != 0 ? dividend / divisor : 0;
}

void printFlowFlags(std::uint32_t flags) {
  std::printf("%-24s\n", "Flow Collection Flags");
  for (unsigned int bit = 0; bit < std::size(kFlowFlagNames); ++bit) {
    const bool set = (flags >> bit & 1) != 0;
    const bool on = bit == kGlobalOverride ? set : !set;
    std::printf("   %-21s : %-6s\n", kFlowFlagNames[bit], on ? "On" : "Off");
  }
}

void printStats(const FWFilterRecord_& record) {
  const auto& counters = record.counters;
  const auto pair = [&](const char* name, unsigned int first) {
    printPair(name, counters[first], counters[first + 1]);
  };
  const auto rates = [&](const char* perPacket, const char* perSecond, unsigned int time,
                         unsigned int packets) {
    printPair(perPacket, quotient(counters[time], counters[packets]),
              quotient(counters[time + 1], counters[packets + 1]));
    printPair(perSecond, quotient(counters[packets] * 1000000, counters[time]),
              quotient(counters[packets + 1] * 1000000, counters[time + 1]));
  };

  std::printf("Basic Stats: From Switch  To Switch\n");
  pair("Total rx from weirgate", kFromWeirgate);
  pair("Total packets", kPackets);
  pair("Total time (us)", kTime);
  rates("Rate (us/pkt)", "Rate (pkt/s)", kTime, kPackets);
  pair("Total punted to slowpath", kPunted);
  pair("Total copied to slowpath", kCopied);
  pair("Total hitting failurepolicy", kFailurePolicy);
  pair("Total back from Slowpath", kFromSlowPath);
  pair("Total Slow time (us)", kSlowTime);
  rates("Slow Rate (us/pkt)", "Slow Rate (pkt/s)", kSlowTime, kFromSlowPath);

  std::printf("Reject Failure Stats\n");
  for (unsigned int i = 0; i < std::size(kRejectNames); ++i)
    printCount(kRejectNames[i], counters[kFirstReject + i]);

  std::printf("CPS Stats\n");
  for (unsigned int i = 0; i < std::size(kRateNames); ++i)
    std::printf("   %-21s : %d\n", kRateNames[i], static_cast<int>(record.connectionRates[i]));

  std::printf("RBE Filter Stats\n");
  for (unsigned int i = 0; i < std::size(kRbeNames); ++i)
    printCount(kRbeNames[i], counters[kFirstRbe + i]);
}

}  // namespace

void PrintFilter(const FWFilterRecord_& record, const FilterView& view) {
  if (view.vifOnly && record.vifId[0] == '\0') return;

  if (view.header) {
    std::printf("VM UUID%-44cVNIC Index%-13cFilter Name%-22cSlowPathID\n", ' ', ' ', ' ');
    std::printf("%s\n", std::string(120, '-').c_str());
  }

  const std::int32_t slowPathId = record.slowPathId;
  if (view.slowPathOnly && (slowPathId == 0 || slowPathId != view.slowPathId)) return;

  const std::string name = fieldText(record.name, kMaxName);
  const std::string vmUuid = fieldText(record.vmUuid);
  const int vnicIndex = static_cast<int>(record.vnicIndex);

  if (view.distribution) {
    if (slowPathId != 0)
      std::printf("%-55s%-13d%-43s%d\n", vmUuid.c_str(), vnicIndex, name.c_str(), slowPathId);
    return;
  }

  char vnicUuid[64];
  std::printf("\n");
  printField("Filter Name", name);
  printField("VM UUID", vmUuid);
  printField("VNIC Index", vnicIndex);
  printField("VNIC UUID", gfystr2vnicstr(vmUuid.c_str(), vnicIndex, vnicUuid, sizeof vnicUuid)
                              ? vnicUuid
                              : "bad vnic uuid");
  printUnlessEmpty("VIF ID", fieldText(record.vifId));
  printUnlessEmpty("LSP ID", fieldText(record.lspId));
  printUnlessEmpty("Service Profile", fieldText(record.serviceProfile));
  printField("Filter Rule Config", record.ruleConfig != 0 ? "configured" : "none");
  printField("Filter Hash", static_cast<int>(record.hash));

  // No flag set: every kind is on, and nothing is said.
  if (record.flowFlags != 0) printFlowFlags(record.flowFlags);
  if (view.withStats) printStats(record);
}

namespace {

int listFilters(const char* agent, bool countOnly, FilterView view) {
  std::uint32_t count = 0;
  FilterBuffer records;
  const int failed = GetFilterList(false, countOnly, agent, &count, &records, nullptr);
  if (failed != 0 || countOnly) return failed;
  if (count == 0)
    return error("ERROR: there is no filter for agent %s\n", agent != nullptr ? agent : "");

  bool first = view.distribution || view.slowPathOnly;
  for (std::uint32_t i = 0; i < count; ++i) {
    const auto record =
        loadRecord<FWFilterRecord_>(records.get() + std::size_t{i} * sizeof(FWFilterRecord_));
    if (agent != nullptr && strncasecmp(record.agent, agent, kMaxName) != 0) continue;
    // The header goes with the first record even if that is not shown; then nothing has a header.
    view.header = std::exchange(first, false);
    PrintFilter(record, view);
  }
  return 0;
}

}  // namespace

int GetFWFilters(const char* cmd, int argc, char** argv) {
  // Without -a all agents' filters are listed, whatever the text says of a default; -i is not in
  // the text.
  static constexpr char kUsage[] = "Get all available filters in system.\n\n" USAGE_OPTIONS
                                   "    -a <string>     : agent name, default agent is kelpco-sfw\n"
                                   "    -s              : print statistics\n"
                                   "    -d              : get filter to slowpath distribution\n"
                                   "    -c <slowpathID> : get slowpath to filter distribution\n"
                                   "    -n              : get number of filters\n"
                                   "    -h              : this help message\n";

  const char* agent = nullptr;
  bool countOnly = false;
  FilterView view;
  const auto takeSlowPath = [&](const char* value, const Target& target) {
    if (!decimalOption(value, &view.slowPathId)) return target.usage(1);
    view.slowPathOnly = true;
    return kGoOn;
  };
  return onHost(cmd, argc, argv,
                {.usage = kUsage,
                 .letters = "hia:c:dsn",
                 .own = {{'a', &agent, kMaxName, "ERROR: invalid agent name %s\n"},
                         {'s', &view.withStats},
                         {'d', &view.distribution},
                         {'c', takeSlowPath},
                         {'n', &countOnly},
                         {'i', &view.vifOnly}}},
                [&](const Target&) { return listFilters(agent, countOnly, view); });
}
