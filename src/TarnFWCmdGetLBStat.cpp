#include "TarnFWCmdGetLBStat.h"

#include <limits>

namespace TarnFirewall {

namespace {

constexpr const char* kTooMany = "integer overflow for the number of load balancer pools";

unsigned int sizeFor(const FWLBStat_* stat) {
  if (stat == nullptr) return sizeof(FWLBStat_);
  const std::uint32_t pools = stat->pools;
  if (pools > kLBPools) throw CIntegerOverflowException(kTooMany, static_cast<int>(pools));
  std::uint64_t members = 0;
  for (std::size_t i = 0; i < pools; ++i) members += stat->memberCounts[i];
  const std::uint64_t size = sizeof(FWLBStat_) + std::uint64_t{200} * stat->virtualServers +
                             std::uint64_t{49} * pools + std::uint64_t{183} * members;
  if (size > std::numeric_limits<unsigned int>::max()) {
    throw CIntegerOverflowException(kTooMany, static_cast<int>(pools));
  }
  return static_cast<unsigned int>(size);
}

}  // namespace

CTarnFWCmdGetLBStat::CTarnFWCmdGetLBStat(const dvs_port_* port, const FWLBStat_* stat)
    : CTarnFWSizedCmd(port, sizeFor(stat)), stat_(stat == nullptr ? FWLBStat_{} : *stat) {}

}  // namespace TarnFirewall
