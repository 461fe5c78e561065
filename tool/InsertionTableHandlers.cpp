#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <iterator>

#include "Devices.h"
#include "HandlerForm.h"
#include "Handlers.h"
#include "InsertionRecords.h"
#include "Records.h"
#include "TarnFWLog.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

// Everything here goes to standard output, what has failed too: that is where scripts look for it.

namespace {

#define MAC "%02x:%02x:%02x:%02x:%02x:%02x"
#define MAC_BYTES(mac) mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]

/// A table of the data path: its requests, texts and looks.
template <typename Entry>
struct TableForm {
  const char* name;
  std::uint32_t countRequest;
  std::uint32_t readRequest;
  int width;  // of the frame; not that of the rows everywhere
  void (*printCount)(std::uint64_t count);
  void (*printHeading)();
  void (*printRow)(const Entry& entry);
};

void printFrame(int width) {
  for (int i = 0; i < width; ++i) std::putchar('-');
  std::putchar('\n');
}

template <typename Entry>
void printTable(const TableForm<Entry>& form, const Entry* entries, std::uint64_t count) {
  form.printCount(count);
  printFrame(form.width);
  form.printHeading();
  printFrame(form.width);
  for (std::uint64_t i = 0; i < count; ++i) form.printRow(entries[i]);
  printFrame(form.width);
}

/// Takes no options: what follows the word is left alone, -h too.
template <typename Entry>
int showTable(const TableForm<Entry>& form) {
  host64 count{};
  if (const int result = directRequest(kInsertion, form.countRequest, {}, memoryOf(count));
      result != 0) {
    std::printf("Failed to get %s table count, error %d\n", form.name, result);
    return 1;
  }
  const std::uint64_t known = count;
  if (known == 0) {
    std::printf("%s table is empty\n", form.name);
    return 0;
  }

  // The frame has 32 bits for the size.
  constexpr std::uint32_t kHead = sizeof(SITableHead_);
  Records<std::byte> table;
  if (itemsFit(known, sizeof(Entry), UINT32_MAX - kHead))
    table = makeRecords<std::byte>(kHead + known * sizeof(Entry));
  if (table == nullptr) {
    std::printf("Unable to allocate memory for %s table entries\n", form.name);
    return 1;
  }
  const auto size = static_cast<std::uint32_t>(kHead + known * sizeof(Entry));
  if (directRequest(kInsertion, form.readRequest, memoryOf(count), {table.get(), size}) != 0) {
    std::printf("Failed to get %s table entries\n", form.name);
    return 1;
  }

  // Entries come and go between the two requests.
  const std::uint64_t returned = loadRecord<SITableHead_>(table.get()).count;
  if (returned > known)
    TARNFW_WARNING("%lu %s entries returned for room of %lu\n", returned, form.name, known);
  printTable(form, reinterpret_cast<const Entry*>(table.get() + kHead), std::min(returned, known));
  return 0;
}

template <std::size_t N>
const char* word(const char* const (&words)[N], unsigned int number) {
  return number < N ? words[number] : "UNKNOWN";
}

void printService(const SIService_& service) {
  static constexpr const char* kPolicies[] = {"INVALID", "DROP", "ALLOW", "DEFAULT"};
  std::printf("%-37s| %8u,%-3u,%-4u | " MAC " | %8u,%-3u,%-4u | " MAC " | %-14s|\n",
              fieldText(service.uuid).c_str(), spiOf(service.forwardSpi),
              std::uint32_t{service.forwardSi}, std::uint32_t{service.forwardScid},
              MAC_BYTES(service.forwardMac), spiOf(service.reverseSpi),
              std::uint32_t{service.reverseSi}, std::uint32_t{service.reverseScid},
              MAC_BYTES(service.reverseMac), word(kPolicies, service.failPolicy));
}

void printNsh(const SINsh_& nsh) {
  static constexpr const char* kTypes[] = {"COMPATIBILITY", "NATIVE"};
  static constexpr const char* kModes[] = {"COPY", "REDIRECT"};
  std::printf("%-9u,%-5u | " MAC " | %-13s | %-8s |\n", spiOf(nsh.spi), std::uint32_t{nsh.si},
              MAC_BYTES(nsh.mac), word(kTypes, nsh.type), word(kModes, nsh.mode));
}

void printProxy(const SIProxy_& proxy) {
  std::printf(" " MAC " |%-16s|%-17s|%-19s|%-16s|\n", MAC_BYTES(proxy.mac),
              proxy.native != 0 ? " NATIVE" : " COMPATIBILITY",
              proxy.canDecrypt != 0 ? " YES" : " NO",
              proxy.liveness != 0 ? " REQUIRED" : " NOT REQUIRED",
              proxy.redirect != 0 ? " REDIRECT" : " COPY");
}

constexpr TableForm<SIService_> kServices{
    .name = "service",
    .countRequest = SI_REQUEST_SERVICE_COUNT,
    .readRequest = SI_REQUEST_SERVICES,
    .width = 134,
    .printCount =
        [](std::uint64_t count) {
          std::printf("Service table has %lu entries\n", count);
          std::printf("service table count %lu\n", count);
        },
    .printHeading =
        [] {
          std::printf("%-37s|%-19s|%-19s|%-19s|%-19s|%8s|\n", " UUID", " FWD SPI,SI,SCID",
                      " FWD SERVICE MAC", " REV SPI,SI,SCID", " REV SERVICE MAC",
                      " FAILURE POLICY");
        },
    .printRow = printService,
};

constexpr TableForm<SINsh_> kNsh{
    .name = "nsh",
    .countRequest = SI_REQUEST_NSH_COUNT,
    .readRequest = SI_REQUEST_NSH,
    .width = 83,
    .printCount = [](std::uint64_t count) { std::printf("nsh table has %lu entries\n", count); },
    .printHeading =
        [] {
          std::printf("%-16s|%-19s|%-15s|%-10s|\n", "SPI_KEY, SI_KEY ", " SERVICE MAC ",
                      " SERVICE TYPE ", " MODE ");
        },
    .printRow = printNsh,
};

constexpr TableForm<SIProxy_> kProxies{
    .name = "proxy",
    .countRequest = SI_REQUEST_PROXY_COUNT,
    .readRequest = SI_REQUEST_PROXIES,
    .width = 92,
    .printCount = [](std::uint64_t count) { std::printf("proxy table has %lu entries\n", count); },
    .printHeading =
        [] {
          std::printf("%-19s|%-16s|%-17s|%-19s|%-16s|\n", " SERVICE MAC ", " SERVICE MODE ",
                      " SERVICE CAN DEC ", " LIVENESS SUPPORT", " COPY RED MODE ");
        },
    .printRow = printProxy,
};

// --- Statistics of a service machine

constexpr char kStatsUsage[] = "get svm stats command help.\n\n" USAGE_OPTIONS
                               "    -p <string> : SVM port id, such as 67108875\n" USAGE_HELP;

/// What the call gives for a port that is not a service machine's.
constexpr int kNoProxyStats = 0xbad0003;

constexpr struct {
  const char* name;
  host64 SIProxyStats_::*value;
} kStatistics[] = {
    {"rx_from_svm", &SIProxyStats_::rxFromSvm},
    {"rx_from_iochain", &SIProxyStats_::rxFromIochain},
    {"to_svm_liveness_pkts", &SIProxyStats_::toSvmLivenessPkts},
    {"from_svm_liveness_pkts", &SIProxyStats_::fromSvmLivenessPkts},
    {"native_length_patch_fail", &SIProxyStats_::nativeLengthPatchFail},
    {"bad_eth_hdr", &SIProxyStats_::badEthHdr},
    {"quench", &SIProxyStats_::quench},
    {"get_nsh_fail", &SIProxyStats_::getNshFail},
    {"ingress_inject_fail", &SIProxyStats_::ingressInjectFail},
    {"copy_fail", &SIProxyStats_::copyFail},
    {"nsh_ttl_expired", &SIProxyStats_::nshTtlExpired},
    {"zero_si", &SIProxyStats_::zeroSi},
    {"unknown_next_hop", &SIProxyStats_::unknownNextHop},
    {"set_nsh_fail", &SIProxyStats_::setNshFail},
    {"push_headroom_fail", &SIProxyStats_::pushHeadroomFail},
    {"insufficient_decap_bytes", &SIProxyStats_::insufficientDecapBytes},
    {"insufficient_spf_bytes", &SIProxyStats_::insufficientSpfBytes},
    {"insufficient_map_bytes", &SIProxyStats_::insufficientMapBytes},
    {"partial_copy", &SIProxyStats_::partialCopy},
};

int showStatistics(std::uint32_t port) {
  std::printf("calling the SI Ioctl for stats ...\n");
  std::fflush(stdout);
  host32 input = port;
  SIProxyStats_ stats{};
  const int result =
      directRequest(kInsertion, SI_REQUEST_PROXY_STATS, memoryOf(input), memoryOf(stats));
  if (result == kNoProxyStats) {
    std::printf("Proxy stats not found, please check if port %u is GVM port", port);
    return 1;
  }
  if (result != 0) {
    std::printf("Failed to get the port stats error %u error code %d\n",
                static_cast<unsigned int>(result), errno);
    return 1;
  }

  std::printf("%-30s|  %-30s\n", "Statistic name", "Statistic value");
  printFrame(60);
  for (const auto& statistic : kStatistics)
    std::printf("%-30s|  %-30lu\n", statistic.name, std::uint64_t{stats.*statistic.value});
  return 0;
}

}  // namespace

int GetSISvcTable(const char*, int, char**) { return showTable(kServices); }
int GetSINshTable(const char*, int, char**) { return showTable(kNsh); }
int GetSIProxyTable(const char*, int, char**) { return showTable(kProxies); }

int GetSISVMProxyStats(const char* cmd, int argc, char** argv) {
  const char* port = nullptr;
  const auto needPort = [&](const Target& target) {
    if (port != nullptr) return kGoOn;
    std::printf("port number not specified. Please use -p option");
    return target.usage(1);
  };
  return onHost(cmd, argc, argv,
                {.usage = kStatsUsage, .letters = "hp:", .own = {{'p', &port}}, .check = needPort},
                [&](const Target&) {
                  char kept[11];  // 10 characters
                  Strncpy(kept, port, sizeof kept);
                  return showStatistics(
                      static_cast<std::uint32_t>(boundedOption(kept, INT32_MIN, UINT32_MAX)));
                });
}
