#include "FilterHandlers.h"

#include <strings.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "Devices.h"
#include "HandlerForm.h"
#include "Handlers.h"
#include "TarnFWLog.h"
#include "TarnFWText.h"
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

/// What stands in front of a value: a name in 24 columns or more, with the blanks that indent it,
/// and a colon. The compiler pads it: a filter with statistics has 60 lines, which `printf` would
/// pad again for each filter.
template <std::size_t Indent>
class Label {
 public:
  consteval Label(const char* name) {  // NOLINT(google-explicit-constructor): a literal
    std::fill_n(text_, sizeof text_, ' ');
    std::size_t end = Indent;
    while (*name != '\0') text_[end++] = *name++;
    end = std::max<std::size_t>(end, 24);
    text_[end + 1] = ':';
    size_ = end + 3;
  }

  std::string_view text() const { return {text_, size_}; }

 private:
  char text_[40];
  std::size_t size_;
};
using FieldLabel = Label<0>;
using CounterLabel = Label<3>;

constexpr CounterLabel kRejectNames[] = {
    "Bad L2",  "Bad Ethernet", "Non IP",          "Short IP",     "Bad IPv4",     "Bad IPv6",
    "Bad TCP", "Bad ICMP",     "Rst for TCP Rst", "Rate Limited", "Failed Alloc", "Failed Other",
};
constexpr CounterLabel kRateNames[] = {
    "Current",         "Max (in window)", "Avg (in window)",
    "High Water Mark", "Active Conn",     "High Water Mark Conn",
};
constexpr CounterLabel kRbeNames[] = {"RBE In Pkt", "RBE Out Pkt", "RBE In Drop", "RBE Out Drop"};

// By bit. A set bit switches the kind off; only the last one is on when set.
constexpr CounterLabel kFlowFlagNames[] = {
    "L2 Pass Flows",   "L2 Drop Flows", "L3 Drop Flows",   "L3 Inactive Flows",
    "L3 Active Flows", "All Flows",     "Global override",
};
constexpr unsigned int kGlobalOverride = 6;

/// Length of a filter's text, statistics included, so that the string grows once.
constexpr std::size_t kUsualText = 2500;

template <std::size_t Indent>
void appendLine(std::string& text, const Label<Indent>& label, std::string_view value) {
  text += label.text();
  text += value;
  text += '\n';
}

void appendField(std::string& text, const FieldLabel& label, std::string_view value) {
  appendLine(text, label, value);
}

void appendField(std::string& text, const FieldLabel& label, int value) {
  text += label.text();
  appendDecimal(text, value);
  text += '\n';
}

void appendUnlessEmpty(std::string& text, const FieldLabel& label, std::string_view value) {
  if (!value.empty()) appendField(text, label, value);
}

void appendCount(std::string& text, const CounterLabel& label, std::int64_t value) {
  text += label.text();
  appendDecimal(text, value);
  text += '\n';
}

void appendPair(std::string& text, const CounterLabel& label, std::int64_t fromSwitch,
                std::int64_t toSwitch) {
  text += label.text();
  appendDecimal(text, fromSwitch);
  text += ' ';
  appendDecimal(text, toSwitch);
  text += '\n';
}

/// Printed as it stands in 64 bits: a quotient or a counter above 2^63 prints as a negative number.
std::int64_t quotient(std::uint64_t dividend, std::uint64_t divisor) {
  return static_cast<std::int64_t>(divisor != 0 ? dividend / divisor : 0);
}

void appendFlowFlags(std::string& text, std::uint32_t flags) {
  text += "Flow Collection Flags   \n";
  for (unsigned int bit = 0; bit < std::size(kFlowFlagNames); ++bit) {
    const bool set = (flags >> bit & 1) != 0;
    const bool on = bit == kGlobalOverride ? set : !set;
    appendLine(text, kFlowFlagNames[bit], on ? "On    " : "Off   ");
  }
}

/// The counters of the two directions, and what is worked out of them.
class PairLines {
 public:
  PairLines(std::string& text, const FWFilterRecord_& record)
      : text_(text), counters_(record.counters) {}

  void counter(const CounterLabel& label, unsigned int first) {
    appendPair(text_, label, static_cast<std::int64_t>(counters_[first]),
               static_cast<std::int64_t>(counters_[first + 1]));
  }

  void rates(const CounterLabel& perPacket, const CounterLabel& perSecond, unsigned int time,
             unsigned int packets) {
    appendPair(text_, perPacket, quotient(counters_[time], counters_[packets]),
               quotient(counters_[time + 1], counters_[packets + 1]));
    appendPair(text_, perSecond, quotient(counters_[packets] * 1000000, counters_[time]),
               quotient(counters_[packets + 1] * 1000000, counters_[time + 1]));
  }

 private:
  std::string& text_;
  const decltype(FWFilterRecord_::counters)& counters_;
};

void appendStats(std::string& text, const FWFilterRecord_& record) {
  const auto count = [&](const CounterLabel& label, unsigned int counter) {
    appendCount(text, label, static_cast<std::int64_t>(record.counters[counter]));
  };
  PairLines pairs(text, record);

  text += "Basic Stats: From Switch  To Switch\n";
  pairs.counter("Total rx from weirgate", kFromWeirgate);
  pairs.counter("Total packets", kPackets);
  pairs.counter("Total time (us)", kTime);
  pairs.rates("Rate (us/pkt)", "Rate (pkt/s)", kTime, kPackets);
  pairs.counter("Total punted to slowpath", kPunted);
  pairs.counter("Total copied to slowpath", kCopied);
  pairs.counter("Total hitting failurepolicy", kFailurePolicy);
  pairs.counter("Total back from Slowpath", kFromSlowPath);
  pairs.counter("Total Slow time (us)", kSlowTime);
  pairs.rates("Slow Rate (us/pkt)", "Slow Rate (pkt/s)", kSlowTime, kFromSlowPath);

  text += "Reject Failure Stats\n";
  for (unsigned int i = 0; i < std::size(kRejectNames); ++i)
    count(kRejectNames[i], kFirstReject + i);

  text += "CPS Stats\n";
  for (unsigned int i = 0; i < std::size(kRateNames); ++i)
    appendCount(text, kRateNames[i], static_cast<std::int32_t>(record.connectionRates[i]));

  text += "RBE Filter Stats\n";
  for (unsigned int i = 0; i < std::size(kRbeNames); ++i) count(kRbeNames[i], kFirstRbe + i);
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

  std::string text;
  text.reserve(kUsualText);
  text += '\n';
  appendField(text, "Filter Name", name);
  appendField(text, "VM UUID", vmUuid);
  appendField(text, "VNIC Index", vnicIndex);
  char vnicUuid[64];
  const bool good = gfystr2vnicstr(vmUuid.c_str(), vnicIndex, vnicUuid, sizeof vnicUuid);
  appendField(text, "VNIC UUID", good ? vnicUuid : "bad vnic uuid");
  appendUnlessEmpty(text, "VIF ID", fieldText(record.vifId));
  appendUnlessEmpty(text, "LSP ID", fieldText(record.lspId));
  appendUnlessEmpty(text, "Service Profile", fieldText(record.serviceProfile));
  appendLine(text, FieldLabel("Filter Rule Config"),
             record.ruleConfig != 0 ? "configured" : "none");
  appendField(text, "Filter Hash", static_cast<int>(record.hash));

  // No flag set: every kind is on, and nothing is said.
  if (record.flowFlags != 0) appendFlowFlags(text, record.flowFlags);
  if (view.withStats) appendStats(text, record);
  std::fwrite(text.data(), 1, text.size(), stdout);
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
