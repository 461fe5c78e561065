#include "TarnFWCmdGetLBConfig.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "TarnFWCmdJson.h"

namespace TarnFirewall {

namespace {

constexpr unsigned int kHead = 81;
constexpr std::uint8_t kFlags = kLBActive | kLBAll | kLBDebug | kLBByUuid | kLBById;
constexpr const char* kTooMany = "integer overflow for the number of load balancer services";

/// Of a service by its sizes, or by the head of its block.
template <typename Service>
std::uint64_t blockSize(const Service& service) {
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
    : CTarnFWPrinted(port, sizeFor(sizes)), sizes_(sizes == nullptr ? FWLBConfigSize_{} : *sizes) {}

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
  const auto flag = [this](std::uint8_t bit) { return (sizes_.flags & bit) != 0 ? 1 : 0; };
  TARNFW_TRACE_IN(kWriteCmdBody, LOG_DEBUG, FW_COMPONENT_CMD, 1,
                  "LB config: size %u lbs_cnt %u stale_lbs %u options: (current %d all %d debug %d "
                  "id %d uuid %s)\n\n",
                  getMsgSize(), sizes_.activeCount + 0u, sizes_.staleCount + 0u, flag(kLBActive),
                  flag(kLBAll), flag(kLBDebug), static_cast<int>(sizes_.id),
                  fieldText(sizes_.uuid).c_str());
  std::size_t at = kHead;
  int index = 0;
  for (const FWLBServiceSize_& service : services()) {
    TARNFW_TRACE_IN(kWriteCmdBody, LOG_DEBUG, FW_COMPONENT_CMD, 1,
                    "LB config: LB-%d: vs %u pool %u pm %u lbs %p\n\n", index++,
                    service.virtualServers + 0u, service.pools + 0u, service.poolMembers + 0u,
                    static_cast<const void*>(body.data() + at));
    at += static_cast<std::size_t>(blockSize(service));
  }
}

/// The reply counts the services and what they hold anew. No more of them are read than were asked
/// for, and none whose block goes past the reply's end.
void CTarnFWCmdGetLBConfig::print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const {
  const std::uint32_t active = reply.word(4);
  const std::uint32_t stale = reply.word(8);
  const std::uint32_t id = reply.word(12);
  const std::string uuid = reply.text(16, sizeof sizes_.uuid);
  const std::uint8_t flags = reply.byte(80);

  CTarnFWJson json(out);
  json.number("active_count", active);
  json.number("stale_count", stale);
  json.number("id", id);
  json.text("uuid", uuid);
  json.number("flags", flags);
  json.beginList("services");
  const std::uint64_t count =
      std::min<std::uint64_t>(std::uint64_t{active} + stale, services().size());
  std::span<const std::byte> rest = reply.rest(kHead);
  for (std::uint32_t i = 0; i < count && rest.size() >= sizeof(FWLBServiceHead_); ++i) {
    const auto head = loadRecord<FWLBServiceHead_>(rest.data());
    if (blockSize(head) > rest.size()) break;
    json.beginObject();
    json.number("index", i);
    json.text("state", i < active ? "active" : "stale");
    json.number("virtual_servers", head.virtualServers);
    json.number("pools", head.pools);
    json.number("pool_members", head.poolMembers);
    json.end();
    rest = rest.subspan(static_cast<std::size_t>(blockSize(head)));
  }
  json.end();
  json.end();
}

}  // namespace TarnFirewall
