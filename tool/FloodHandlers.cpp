#include <algorithm>
#include <climits>
#include <cstdio>

#include "HandlerForm.h"
#include "Handlers.h"
#include "Records.h"

using namespace TarnFirewall;

namespace {

constexpr char kGetUsage[] = "Get flood protection status.\n\n" USAGE_OPTIONS USAGE_FILTER
                             "    -s          : print syncache rows\n"
                             "    -z          : zero flood and syncache counters\n" USAGE_HELP;

constexpr char kSetUsage[] = "Configure flood protection parameters.\n\n" USAGE_OPTIONS USAGE_FILTER
                             "    -u <number> : UDP active flow limit (0 == no limit)\n"
                             "    -i <number> : ICMP active flow limit (0 == no limit)\n"
                             "    -t <number> : TCP half-open flow limit (0 == no limit)\n"
                             "    -o <number> : OTHER active flow limit (0 == no limit)\n"
                             "    -s <0|1>    : SYN cache\n"
                             "    -b <hashsize> : number of hash buckets (power of 2)\n"
                             "    -r <0|1>    : RST spoofing\n"
                             "    -z          : zero counters\n" USAGE_HELP;

unsigned int number(const host32& value) { return value; }
unsigned long number(const host64& value) { return static_cast<std::uint64_t>(value); }

/// Begins a block. True when the flows have a limit.
bool beginBlock(const char* title, const host32& limit) {
  const bool limited = number(limit) != 0;
  std::printf("%s\n", title);
  std::printf("    Flood Protection        : %s\n", limited ? "enabled" : "disabled");
  return limited;
}

void printUdp(const FWFloodStat_& stat) {
  const bool limited = beginBlock("UDP:", stat.udpLimit);
  std::printf("    Active UDP Flows        = %u\n", number(stat.udpActive));
  if (!limited) return;
  std::printf("    Active UDP Flow Limit   = %u\n", number(stat.udpLimit));
  std::printf("    UDP Flows Denied        = %lu\n", number(stat.udpDenied));
}

void printIcmp(const FWFloodStat_& stat) {
  const bool limited = beginBlock("ICMP:", stat.icmpLimit);
  std::printf("    Active ICMP Flows       = %u\n", number(stat.icmpActive));
  if (!limited) return;
  std::printf("    Active ICMP Flow Limit  = %u\n", number(stat.icmpLimit));
  std::printf("    ICMP Flows Denied       = %lu\n", number(stat.icmpDenied));
}

void printOther(const FWFloodStat_& stat) {
  const bool limited = beginBlock("OTHER:", stat.otherLimit);
  std::printf("    Active OTHER Flows      = %u\n", number(stat.otherActive));
  if (!limited) return;
  std::printf("    Active OTHER Flow Limit = %u\n", number(stat.otherLimit));
  std::printf("    OTHER Flows Denied      = %lu\n", number(stat.otherDenied));
}

void printSyncache(const FWFloodStat_& stat) {
  if (number(stat.syncache) == 0) {
    std::printf("    TCP Syncache            : disabled\n");
    return;
  }
  std::printf("    TCP Syncache            : enabled, %u x %u\n", number(stat.syncacheFirst),
              number(stat.syncacheSecond));
  std::printf("                            : inuse = %u, purged = %lu, notfound = %lu\n",
              number(stat.syncacheInUse), number(stat.syncachePurged),
              number(stat.syncacheNotFound));
  if (number(stat.rstSpoofing) != 0)
    std::printf("    RST Spoofing            : enabled, %lu sent\n", number(stat.rstSent));
  else
    std::printf("    RST Spoofing            : disabled\n");
}

void printTcp(const FWFloodStat_& stat) {
  const bool limited = beginBlock("TCP Half-open:", stat.tcpLimit);
  std::printf("    Active TCP Flows        = %u\n", number(stat.tcpActive));
  if (limited) {
    std::printf("    Active TCP Flow Limit   = %u\n", number(stat.tcpLimit));
    std::printf("    TCP Flows Denied        = %lu\n", number(stat.tcpDenied));
  }
  printSyncache(stat);
}

/// The buckets of the syncache that were ever used, by their places.
void printRows(const FWFloodStat_& stat) {
  const unsigned int count = std::min(number(stat.rowCount), kFloodRows);
  if (count == 0) return;
  std::printf("Syncache:\n");
  for (unsigned int i = 0; i < count; ++i) {
    const unsigned int inUse = number(stat.rows[i].inUse);
    const unsigned long purged = number(stat.rows[i].purged);
    const unsigned long notFound = number(stat.rows[i].notFound);
    if (inUse == 0 && purged == 0 && notFound == 0) continue;
    std::printf("    %d: inuse = %u, purged = %lu, notfound = %lu\n", static_cast<int>(i), inUse,
                purged, notFound);
  }
}

int showFloods(const Target& target, bool rows, bool zero) {
  const auto room = makeRecords<FWFloodStat_>(1);
  if (room == nullptr) {
    return error("ERROR: Failed to allocate %ld bytes for flood stat\n",
                 static_cast<long>(sizeof(FWFloodStat_)));
  }
  FWFloodStat_& stat = room[0];
  if (zero) stat.zeroCounters = 1;
  if (rows) {
    stat.rowSize = sizeof(FWFloodRow_);
    stat.rowCount = kFloodRows;
  }
  const FWStatus_t status = FW_GetFloodStat(target.handle, target.port, nullptr, &stat);
  if (status != FW_STATUS_OK) return outcome(status, "ERROR: Failed to get flood status: %s\n");
  printUdp(stat);
  printIcmp(stat);
  printOther(stat);
  printTcp(stat);
  if (rows) printRows(stat);
  std::printf("\n");
  return 0;
}

/// An option that sets one field of the configuration.
OwnOption setting(char letter, hosti32* field) {
  return {letter, [field](const char* value, const Target&) {
            *field = static_cast<std::int32_t>(boundedOption(value, INT_MIN, INT_MAX));
            return kGoOn;
          }};
}

}  // namespace

int GetFloodStat(const char* cmd, int argc, char** argv) {
  bool rows = false;
  bool zero = false;
  return onFilter(cmd, argc, argv,
                  {.usage = kGetUsage,
                   .letters = "f:szh",
                   .own = {{'s', &rows}, {'z', &zero}},
                   .missing = {.usage = false}},
                  [&](const Target& target) { return showFloods(target, rows, zero); });
}

int SetFloodConfig(const char* cmd, int argc, char** argv) {
  FWFloodCfg_ configuration{-1, -1, -1, -1, -1, -1, -1, -1, 0};
  bool zero = false;
  return onFilter(cmd, argc, argv,
                  {.usage = kSetUsage,
                   .letters = "f:u:i:t:o:s:b:r:zh",
                   .own = {setting('u', &configuration.udpLimit),
                           setting('i', &configuration.icmpLimit),
                           setting('t', &configuration.tcpLimit),
                           setting('o', &configuration.otherLimit),
                           setting('s', &configuration.syncache),
                           setting('b', &configuration.hashSize),
                           setting('r', &configuration.rstSpoofing),
                           {'z', &zero}},
                   .missing = {.usage = false}},
                  [&](const Target& target) {
                    configuration.zeroCounters = zero ? 1 : 0;
                    return outcome(
                        FW_SetFloodCfg(target.handle, target.port, nullptr, &configuration),
                        "ERROR: Failed to set flood config: %s\n");
                  });
}
