#include "TarnFWCmdGetLBConfig.h"

#include <cstring>
#include <limits>

namespace TarnFirewall {

namespace {

constexpr unsigned int kHead = 81;
constexpr std::uint8_t kFlags = kLBActive | kLBAll | kLBDebug | kLBByUuid | kLBById;
constexpr const char* kTooMany = "integer overflow for the number of load balancer services";

std::uint64_t blockSize(const FWLBServiceSize_& service) {
  return sizeof(FWLBServiceHead_) + std::uint64_t{90} * service.virtualServers +
         std::uint64_t{24} * service.pools + std::uint64_t{74} * service.poolMembers;
}

std::uint64_t serviceCount(const FWLBConfigSize_& sizes) {
  return std::uint64_t{sizes.activeCount} + sizes.staleCount;
}

unsigned int sizeFor(const FWLBConfigSize_* sizes) {
  if (sizes == nullptr) return kHead;
  const std::uint64_t count = serviceCount(*sizes);
  if (count > kLBServices) throw CIntegerOverflowException(kTooMany, static_cast<int>(count));
  std::uint64_t blocks = 0;
  for (std::size_t i = 0; i < count; ++i) blocks += blockSize(sizes->services[i]);
  if (kHead + blocks > std::numeric_limits<unsigned int>::max()) {
    throw CIntegerOverflowException(kTooMany, static_cast<int>(count));
  }
  return static_cast<unsigned int>(kHead + blocks);
}

}  // namespace

CTarnFWCmdGetLBConfig::CTarnFWCmdGetLBConfig(const dvs_port_* port, const FWLBConfigSize_* sizes)
    : CTarnFWSizedCmd(port, sizeFor(sizes)),
      sizes_(sizes == nullptr ? FWLBConfigSize_{} : *sizes) {}

std::span<const FWLBServiceSize_> CTarnFWCmdGetLBConfig::services() const {
  return {sizes_.services, static_cast<std::size_t>(serviceCount(sizes_))};
}

void CTarnFWCmdGetLBConfig::fill(std::span<std::byte> body) const {
  const std::string uuid = fieldText(sizes_.uuid);
  storeAt(body, 0, host32(getMsgSize()));
  storeAt(body, 4, sizes_.activeCount);
  storeAt(body, 8, sizes_.staleCount);
  storeAt(body, 12, sizes_.id);
  std::memcpy(body.data() + 16, uuid.data(), uuid.size());
  storeAt(body, 80, static_cast<std::uint8_t>(sizes_.flags & kFlags));
  std::size_t at = kHead;
  for (const FWLBServiceSize_& service : services()) {
    FWLBServiceHead_ head{};
    head.virtualServers = service.virtualServers;
    head.pools = service.pools;
    head.poolMembers = service.poolMembers;
    storeAt(body, at, head);
    at += static_cast<std::size_t>(blockSize(service));
  }
  trace(body);
}

void CTarnFWCmdGetLBConfig::trace(std::span<const std::byte> body) const {
  constexpr const char* kFunction = "writeCmdBody";
  const auto flag = [this](std::uint8_t bit) { return (sizes_.flags & bit) != 0 ? 1 : 0; };
  TARNFW_TRACE_IN(kFunction, LOG_DEBUG, FW_COMPONENT_CMD, 1,
                  "LB config: size %u lbs_cnt %u stale_lbs %u options: (current %d all %d debug %d "
                  "id %d uuid %s)\n\n",
                  getMsgSize(), sizes_.activeCount + 0u, sizes_.staleCount + 0u, flag(kLBActive),
                  flag(kLBAll), flag(kLBDebug), static_cast<int>(sizes_.id),
                  fieldText(sizes_.uuid).c_str());
  std::size_t at = kHead;
  int index = 0;
  for (const FWLBServiceSize_& service : services()) {
    TARNFW_TRACE_IN(kFunction, LOG_DEBUG, FW_COMPONENT_CMD, 1,
                    "LB config: LB-%d: vs %u pool %u pm %u lbs %p\n\n", index++,
                    service.virtualServers + 0u, service.pools + 0u, service.poolMembers + 0u,
                    static_cast<const void*>(body.data() + at));
    at += static_cast<std::size_t>(blockSize(service));
  }
}

}  // namespace TarnFirewall
