#include <netinet/in.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <iterator>

#include "HandlerForm.h"
#include "Handlers.h"
#include "Records.h"

using namespace TarnFirewall;

namespace {

constexpr char kUsage[] = "Print current ALG structure info.\n\n" USAGE_OPTIONS USAGE_FILTER
                          "    -c <1|0>    : display|omit control flows\n"
                          "    -d <1|0>    : display|omit dynamic data flows\n" USAGE_HELP;

const char* typeName(std::uint8_t type) {
  static constexpr const char* kNames[] = {"??", "FTP", "ORACLE", "SUNRPC", "DCERPC", "TFTP"};
  return kNames[type < std::size(kNames) ? type : 0];
}

const char* directionName(std::uint8_t direction) { return direction == 1 ? "IN" : "OUT"; }

const char* protocolName(const FWAlg_& alg) {
  return alg.protocol == 1 ? "UDP" : alg.protocol == 2 ? "TCP" : "UDP/TCP";
}

void show(const FWAlg_& alg) {
  std::printf("ALG: %s, %s %s port %d, %s\n", typeName(alg.type), alg.family == 2 ? "IPv4" : "IPv6",
              protocolName(alg), static_cast<int>(alg.port), directionName(alg.direction));
}

void show(const FWAlgPort_& port) {
  constexpr std::uint8_t kActive = 2;
  const bool isIpv4 = port.flags >= 8 && port.flags <= 11;
  std::printf(
      "ALG PORT: %s, %s %s port %d, %s, active: %d, dport: %d, ctrl_flowid: %lx, rcnt: %d\n",
      typeName(port.type), isIpv4 ? "IPv4" : "IPv6", port.protocol == IPPROTO_UDP ? "UDP" : "TCP",
      static_cast<int>(port.port), directionName(port.direction),
      (port.flags & kActive) != 0 ? 1 : 0, static_cast<int>(port.destinationPort),
      static_cast<unsigned long>(port.controlFlowId), static_cast<int>(port.references));
}

/// What one kind of records differs in from the other. The heading is printed before the records.
template <typename Record>
struct Kind {
  FWStatus_t (*count)(fwlibhandle_*, const dvs_port_*, void*, unsigned int* size,
                      unsigned int* count);
  FWStatus_t (*fetch)(fwlibhandle_*, const dvs_port_*, void*, unsigned int size, unsigned int count,
                      Record* records, unsigned int* returned);
  const char* name;  // in error lines
  const char* heading;
};

constexpr Kind<FWAlg_> kAlgs{FW_GetAlgCount, FW_GetAlgs, "alg", ""};
constexpr Kind<FWAlgPort_> kPorts{FW_GetAlgPortCount, FW_GetAlgPorts, "alg port", "\n"};

/// Prints the records of a kind. `kGoOn` when the next kind may follow. Scripts take a size that is
/// another one, or a lack of memory, for a kernel without gateways: the status is 0 then.
template <typename Record>
int showAll(const Target& target, const Kind<Record>& kind) {
  unsigned int size = 0;
  unsigned int count = 0;
  if (kind.count(target.handle, target.port, nullptr, &size, &count) != FW_STATUS_OK)
    return error("ERROR: Failed to get %s structure count\n", kind.name);
  if (count == 0) return kGoOn;
  if (size != sizeof(Record)) {
    error("ERROR: %s record size mismatch (%d != %zu)\n", kind.name, static_cast<int>(size),
          sizeof(Record));
    return 0;
  }
  Records<Record> records;
  if (count <= UINT_MAX / sizeof(Record)) records = makeRecords<Record>(count);
  if (records == nullptr) {
    error("ERROR: no memory for getting %d alg records\n", static_cast<int>(count));
    return 0;
  }
  unsigned int returned = 0;
  const auto bytes = static_cast<unsigned int>(count * sizeof(Record));
  const FWStatus_t status =
      kind.fetch(target.handle, target.port, nullptr, bytes, count, records.get(), &returned);
  if (status != FW_STATUS_OK)
    return error("ERROR: Failed to get %d %s records\n", static_cast<int>(count), kind.name);
  std::printf("%s", kind.heading);
  for (unsigned int i = 0; i < std::min(count, returned); ++i) show(records[i]);
  return kGoOn;
}

int showAlgs(const Target& target) {
  if (const int status = showAll(target, kAlgs); status != kGoOn) return status;
  const int status = showAll(target, kPorts);
  return status == kGoOn ? 0 : status;
}

}  // namespace

int GetALGInfo(const char* cmd, int argc, char** argv) {
  // Scripts give both choices; neither has an effect.
  const auto ignore = [](const char*, const Target&) { return kGoOn; };
  return onFilter(cmd, argc, argv,
                  {.usage = kUsage,
                   .letters = "f:c:d:h",
                   .own = {{'c', ignore}, {'d', ignore}},
                   .alwaysTakesAgent = true},
                  showAlgs);
}
