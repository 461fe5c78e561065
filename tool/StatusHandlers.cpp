// What is read and set by direct requests: whether the distributed firewall is on, thresholds, and
// the collection of flows.

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <span>

#include "Devices.h"
#include "HandlerForm.h"
#include "Handlers.h"
#include "Records.h"
#include "TableRequests.h"
#include "TarnFWFilter.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

enum DirectRequest : std::uint32_t {
  kSetFlowCollection = 27,
  kSetThresholds = 28,
  kGetThresholds = 29,
};

// --- Status of the distributed firewall

int showFirewall(bool enabled) {
  std::printf("Distributed firewall status: %s\n", enabled ? "enabled" : "disabled");
  return 0;
}

bool hasEntry(std::span<const std::byte> table, WGTEntryType wanted) {
  bool found = false;
  visitEntries(table, [&](std::uint8_t type, std::span<const std::byte>) {
    found = type == wanted;
    return !found;
  });
  return found;
}

// --- Thresholds

/// As the kernel lays them out.
struct FWThresholds_ {
  std::uint8_t flags;     //  +0  request: which of the two are given
  std::uint8_t cpu;       //  +1  percent
  std::uint8_t cpuUsage;  //  +2  percent; reply
  std::uint8_t reserved;  //  +3  zero
  host32 connectionRate;  //  +4  connections per second
};
static_assert(sizeof(FWThresholds_) == 8 && alignof(FWThresholds_) == 1);
static_assert(offsetof(FWThresholds_, cpu) == 1 && offsetof(FWThresholds_, cpuUsage) == 2 &&
              offsetof(FWThresholds_, reserved) == 3 &&
              offsetof(FWThresholds_, connectionRate) == 4);

enum FWThresholdFlag : std::uint8_t {
  kCpuGiven = 1,
  kConnectionRateGiven = 2,
};

constexpr unsigned long kMostCpu = 100;
constexpr unsigned long kMostConnectionRate = 100000;

/// Reads what a text begins with. Returns `kGoOn`, or 1 after an error line.
int readThreshold(const char* text, long* number) {
  char* end = nullptr;
  errno = 0;
  *number = std::strtol(text, &end, 10);
  if (errno == ERANGE || (errno != 0 && *number == 0)) {
    std::perror("strtol");
    return 1;
  }
  return end != text ? kGoOn : error("ERROR: No digits were found\n");
}

/// The unsigned comparison refuses a negative number as well.
bool isAbove(long number, unsigned long most) { return static_cast<unsigned long>(number) > most; }

constexpr char kGetThresholdsUsage[] =
    "Get the event thresholds for CPU, Memory and CPS.\n\n" USAGE_OPTIONS USAGE_HELP;

constexpr char kSetThresholdsUsage[] =
    "Set the event thresholds for CPU, Memory and CPS.\n\n" USAGE_OPTIONS
    "    -c <number> : Percent number to raise CPU threshold cross event\n"
    "    -p <number> : CPS Number to raise CPS threshold cross event\n" USAGE_HELP;

// --- Collection of flows

constexpr char kSetFilterFlagsUsage[] =
    "Set flow collection flag setting for a filter.\n\n" USAGE_OPTIONS USAGE_FILTER
    "    -p          : L2 Pass Flows\n"
    "    -d          : L2 Drop Flows\n"
    "    -D          : L3 Drop Flows\n"
    "    -I          : L3 Inactive Flows\n"
    "    -A          : L3 Active Flows\n"
    "    -a          : All Flows\n"
    "    -G          : Override global flags\n" USAGE_HELP "    empty option: turn on all flows\n";

}  // namespace

// Takes no options: what follows the word is left alone, -h too.
int GetFWStatus(const char*, int, char**) {
  std::uint32_t room = 0;
  if (askSize(kIncludeTable, kDefaultAgent, &room) != 0)
    return errno == ENOENT ? showFirewall(false) : 1;
  if (room == 0) return showFirewall(false);

  const auto table = makeRecords<std::byte>(room);
  if (table == nullptr)
    return error("ERROR: no memory for include table of size %d\n", static_cast<int>(room));
  TableReply reply{};
  if (readEntries(kIncludeTable, kDefaultAgent, {table.get(), room}, &reply) != 0) return 1;
  return showFirewall(hasEntry({table.get(), reply.filled}, WGT_ENTRY_HOST));
}

int GetThresholds(const char* cmd, int argc, char** argv) {
  return onHost(cmd, argc, argv, {.usage = kGetThresholdsUsage, .letters = "h"}, [](const Target&) {
    FWThresholds_ thresholds{};
    directRequest(kFirewall, kGetThresholds, thresholds);
    const auto title = [](const char* name) { std::printf("%-32s\n", name); };
    const auto line = [](const char* name, std::uint32_t value) {
      std::printf("%-32s : %d\n", name, static_cast<int>(value));
    };
    title("CPU");
    line("Configured threshold %", thresholds.cpu);
    line("Current usage %", thresholds.cpuUsage);
    title("CPS");
    line("Configured threshold ", thresholds.connectionRate);
    return 0;
  });
}

int SetThresholds(const char* cmd, int argc, char** argv) {
  FWThresholds_ thresholds{};
  const auto takeCpu = [&](const char* value, const Target&) {
    long number = 0;
    if (const int failed = readThreshold(value, &number); failed != kGoOn) return failed;
    if (isAbove(number, kMostCpu)) return error("ERROR: Invalid entry %ld.\n", number);
    thresholds.flags |= kCpuGiven;
    thresholds.cpu = static_cast<std::uint8_t>(number);
    return kGoOn;
  };
  const auto takeConnectionRate = [&](const char* value, const Target&) {
    long number = 0;
    if (const int failed = readThreshold(value, &number); failed != kGoOn) return failed;
    if (isAbove(number, kMostConnectionRate))
      return error("ERROR: Invalid entry %ld. Try 0 to 100000\n", number);
    thresholds.flags |= kConnectionRateGiven;
    thresholds.connectionRate = static_cast<std::uint32_t>(number);
    return kGoOn;
  };
  const auto oneOfBoth = [&](const Target&) {
    return thresholds.flags != 0 ? kGoOn
                                 : error("ERROR: CPU or CPS threshold value not provided.\n");
  };
  return onHost(cmd, argc, argv,
                {.usage = kSetThresholdsUsage,
                 .letters = "hc:p:",
                 .own = {{'c', takeCpu}, {'p', takeConnectionRate}},
                 .parsed = oneOfBoth},
                [&](const Target&) {
                  directRequest(kFirewall, kSetThresholds, thresholds);
                  return 0;
                });
}

int SetFilterFlags(const char* cmd, int argc, char** argv) {
  std::uint32_t flags = 0;
  const auto flag = [&flags](char letter, std::uint32_t bit) {
    return OwnOption(letter, [&flags, bit](const char*, const Target&) {
      flags |= bit;
      return kGoOn;
    });
  };
  return onFilter(cmd, argc, argv,
                  {.usage = kSetFilterFlagsUsage,
                   .letters = "hpdDIAaGf:",
                   .own = {flag('p', 1), flag('d', 2), flag('D', 4), flag('I', 8), flag('A', 16),
                           flag('a', 32), flag('G', 64)},
                   .opensLibrary = false},
                  [&](const Target& target) {
                    FWFilterRecord_ record{};
                    Strncpy(record.name, target.filter.name, sizeof record.name);
                    record.flowFlags = flags;
                    FWFilterList_ list{};
                    Strncpy(list.name, target.filter.agent, sizeof list.name);
                    list.bufferLength = sizeof record;
                    list.buffer = addressOf(&record);
                    directRequest(kFirewall, kSetFlowCollection, list);
                    return 0;
                  });
}
