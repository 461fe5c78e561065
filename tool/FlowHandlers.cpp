#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>

#include "Devices.h"
#include "FlowQuery.h"
#include "FlowRecord.h"
#include "HandlerForm.h"
#include "Handlers.h"
#include "Records.h"
#include "Refresh.h"
#include "TarnFWLog.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

constexpr char kGetFlowsUsage[] =
    "Get flow records of a filter.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_REFRESH
    "    -T <a|i|d>  : type of flows only: active, inactive or drop\n"
    "    -F <number> : flush flows in kernel after fetching, must be 0 or 1\n"
    "    -n          : display flow count numbers only\n"
    "    -R          : reset RTT average\n"
    "    -a          : don't include attributes\n"
    "    -v          : display start and end times\n" USAGE_HELP;

constexpr int kNoRecordsPause = 2;

struct FlowOptions {
  Refresh refresh;
  char kind = '\0';  // 'a', 'i' or 'd'; all kinds without it
  int flush = 0;
  bool countsOnly = false;
  bool resetsRtt = false;
  bool omitsAttributes = false;

  int takeKind(const char* value) {
    if (value[0] != 'a' && value[0] != 'i' && value[0] != 'd')
      return error("ERROR: Invalid flow type: %s\n", value);
    kind = value[0];
    return kGoOn;
  }

  int takeFlush(const char* value) {
    if (!decimalOption(value, &flush))
      return error("ERROR: Invalid flush value %s, expected 0 or 1\n", value);
    if (flush < 0 || flush > 1)
      return error("ERROR: Invalid flush value %d, expected 0 or 1\n", flush);
    return kGoOn;
  }
};

FWFlowQuery_ queryOf(const Target& target, const FlowOptions& options) {
  FWFlowQuery_ query{};
  Strncpy(query.agent, target.filter.agent, sizeof query.agent);
  query.selector = *target.port;
  std::fill(std::begin(query.selector.agent), std::end(query.selector.agent), '\0');
  // The byte says the opposite of the option, which scripts depend on: they flush with -F 0.
  query.flush = options.flush == 0 ? 1 : 0;
  query.resetRtt = options.resetsRtt ? 1 : 0;
  query.withAttributes = options.omitsAttributes ? 0 : 1;
  return query;
}

std::array<FWFlowCounts_*, 3> kindsOf(FWFlowQuery_& query) {
  return {&query.active, &query.inactive, &query.drop};
}

void clearCounts(FWFlowQuery_& query) {
  for (FWFlowCounts_* const counts : kindsOf(query)) *counts = {};
}

/// Asks the kernel. A request that fails counts nothing: the command succeeds then, and scripts
/// depend on that.
void ask(FWFlowQuery_& query) {
  if (directRequest(kFirewall, FW_REQUEST_FLOWS, query) != 0) clearCounts(query);
}

/// The kinds together. The kernel takes sums in 32 bits.
struct FlowTotal {
  std::uint64_t records = 0;
  std::uint64_t length = 0;
  std::uint64_t attributeLength = 0;

  /// True when the numbers fit each other, so that a buffer of this length holds the records.
  bool agrees() const {
    return std::max({records, length, attributeLength}) <= UINT32_MAX &&
           attributeLength <= length &&
           (length - attributeLength) / sizeof(FWFlowRecord_) == records;
  }
};

FlowTotal totalOf(FWFlowQuery_& query) {
  FlowTotal total;
  for (const FWFlowCounts_* const counts : kindsOf(query)) {
    total.records += counts->records;
    total.length += counts->length;
    total.attributeLength += counts->attributeLength;
  }
  return total;
}

/// Clears what the query has of the kinds that are not wanted.
void choose(FWFlowQuery_& query, char kind) {
  if (kind == '\0') return;
  if (kind != 'a') query.active = {};
  if (kind != 'i') query.inactive = {};
  if (kind != 'd') query.drop = {};
}

void printCounts(const char* kind, const FWFlowCounts_& counts) {
  std::printf("%s: numRecords = %u, totalAttr = %u, attrLen = %u, len = %u\n", kind,
              std::uint32_t{counts.records}, std::uint32_t{counts.attributes},
              std::uint32_t{counts.attributeLength}, std::uint32_t{counts.length});
}

void printAllCounts(const FWFlowQuery_& query) {
  std::printf("Counts retrieved from kernel:\n");
  printCounts("      Active", query.active);
  printCounts("      Inactive", query.inactive);
  printCounts("      Drop", query.drop);
}

/// Prints up to `count` records. The kernel's count and the lengths in the records lead no further
/// than the bytes that are there.
void printRecords(std::span<const std::byte> bytes, std::uint64_t count, const FlowView& view) {
  for (std::uint64_t i = 0; i < count; ++i) {
    const std::size_t length =
        bytes.size() < sizeof(FWFlowRecord_) ? 0 : std::uint16_t{loadRecord<host16>(bytes.data())};
    if (length < sizeof(FWFlowRecord_) || length > bytes.size()) {
      TARNFW_WARNING("flow %llu of %llu has %zu bytes, %zu are left\n",
                     static_cast<unsigned long long>(i + 1), static_cast<unsigned long long>(count),
                     length, bytes.size());
      return;
    }
    PrintRecord(bytes.first(length), view);
    bytes = bytes.subspan(length);
  }
}

/// Reads the records that the query counts, and prints them.
int showRecords(FWFlowQuery_& query, const FlowView& view) {
  const FlowTotal total = totalOf(query);
  const auto length = static_cast<std::uint32_t>(total.length);
  const auto count = static_cast<int>(total.records);
  if (!total.agrees())
    return error("ERROR: invalid flow record count %d, totalLen = %u, attrLen = %u\n", count,
                 length, static_cast<std::uint32_t>(total.attributeLength));
  const std::uint32_t size = length + kFlowBufferHead;
  if (size < length) return error("ERROR: invalid flow bufferSize %u\n", size);
  const Records<std::byte> buffer = makeRecords<std::byte>(size);
  if (buffer == nullptr)
    return error("ERROR: no memory for getting %d flow records (%u bytes)\n", count, size);

  query.operation = FW_FLOWS_READ;
  query.bufferLength = size;
  query.buffer = addressOf(buffer.get());
  ask(query);
  std::printf("Count retrieved from kernel active=%d, inactive=%d, drop=%d\n",
              static_cast<int>(query.active.records), static_cast<int>(query.inactive.records),
              static_cast<int>(query.drop.records));
  printRecords(std::span<const std::byte>(buffer.get(), size).subspan(kFlowBufferHead),
               totalOf(query).records, view);
  return 0;
}

int showOnce(FWFlowQuery_& query, const FlowOptions& options, const FlowView& view) {
  clearCounts(query);
  query.operation = FW_FLOWS_COUNT;
  query.bufferLength = 0;
  query.buffer = 0;
  ask(query);
  if (totalOf(query).records == 0) {
    std::printf("No records found\n");
    Refresh::pause(kNoRecordsPause);
    return 0;
  }
  if (options.countsOnly) {
    printAllCounts(query);
  } else {
    choose(query, options.kind);
    if (const int status = showRecords(query, view); status != 0) return status;
  }
  options.refresh.wait();
  return 0;
}

int showFlows(const Target& target, const FlowOptions& options) {
  FWFlowQuery_ query = queryOf(target, options);
  const FlowView view{.times = target.verbose(), .attributes = true};
  int status = 0;
  do {
    status = showOnce(query, options, view);
  } while (status == 0 && options.refresh.repeats);
  return status;
}

}  // namespace

int GetFWFlows(const char* cmd, int argc, char** argv) {
  FlowOptions options;
  return onFilter(
      cmd, argc, argv,
      {.usage = kGetFlowsUsage,
       .letters = "hf:t:T:F:avnR",
       .own = {options.refresh.option(),
               {'T', [&](const char* value, const Target&) { return options.takeKind(value); }},
               {'F', [&](const char* value, const Target&) { return options.takeFlush(value); }},
               {'n', &options.countsOnly},
               {'R', &options.resetsRtt},
               {'a', &options.omitsAttributes}},
       .announces = false,
       .raisesLibraryLevel = false},
      [&](const Target& target) { return showFlows(target, options); });
}
