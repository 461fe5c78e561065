#include "TarnFWCmdGetLBStat.h"

#include <algorithm>
#include <limits>

#include "TarnFWCmdJson.h"

namespace TarnFirewall {

namespace {

constexpr const char* kTooMany = "integer overflow for the number of load balancer pools";

unsigned int sizeFor(const FWLBStat_* stat) {
  if (stat == nullptr) return sizeof(FWLBStat_);
  const std::uint32_t pools = stat->pools;
  if (pools > kLBPools) throw CIntegerOverflowException(kTooMany, static_cast<int>(pools));
  std::uint64_t members = 0;
  for (std::size_t i = 0; i < pools; ++i) members += stat->memberCounts[i];
  const std::uint64_t size = sizeof(FWLBStat_) +
                             std::uint64_t{kLBVirtualServerStat} * stat->virtualServers +
                             std::uint64_t{kLBPoolStat} * pools + kLBMemberStat * members;
  if (size > std::numeric_limits<unsigned int>::max()) {
    throw CIntegerOverflowException(kTooMany, static_cast<int>(pools));
  }
  return static_cast<unsigned int>(size);
}

/// Blocks of a reply, one after the other, as far as there are any.
class Blocks {
 public:
  Blocks(std::span<const std::byte> rest, bool withBytes) : rest_(rest), withBytes_(withBytes) {}

  /// Begins the object of the next block. False when the reply ends before its last byte: nothing
  /// follows a block that is cut.
  bool begin(CTarnFWJson& json, std::uint32_t index, std::size_t size) {
    if (rest_.size() < size) {
      rest_ = {};
      return false;
    }
    json.beginObject();
    json.number("index", index);
    if (withBytes_) json.bytes("bytes", rest_.first(size));
    rest_ = rest_.subspan(size);
    return true;
  }

  /// A list of `count` blocks that are the same.
  void list(CTarnFWJson& json, const char* key, std::uint32_t count, std::size_t size) {
    json.beginList(key);
    for (std::uint32_t i = 0; i < count && begin(json, i, size); ++i) json.end();
    json.end();
  }

  /// The blocks after `size` bytes, or none.
  Blocks after(std::size_t size) const {
    return {rest_.subspan(std::min(size, rest_.size())), withBytes_};
  }

 private:
  std::span<const std::byte> rest_;
  bool withBytes_;
};

}  // namespace

CTarnFWCmdGetLBStat::CTarnFWCmdGetLBStat(const dvs_port_* port, const FWLBStat_* stat)
    : CTarnFWPrinted(port, sizeFor(stat)), stat_(stat == nullptr ? FWLBStat_{} : *stat) {}

/// The pools stand before the members of all of them. Counts that are above those that were asked
/// for are not believed.
void CTarnFWCmdGetLBStat::print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const {
  const FWLBStat_ head = answer(reply);
  if ((head.flags & (kLBStatNoLbs | kLBStatNoEntry)) != 0) return;
  const auto bounded = [](const host32& answered, const host32& asked) {
    return std::min<std::uint32_t>(answered, asked);
  };
  const std::uint32_t servers = bounded(head.virtualServers, stat_.virtualServers);
  const std::uint32_t pools = bounded(head.pools, stat_.pools);

  CTarnFWJson json(out);
  json.number("virtual_server_count", head.virtualServers);
  json.number("pool_count", head.pools);
  Blocks blocks(reply.rest(sizeof(FWLBStat_)), (head.flags & kLBStatDebug) != 0);
  blocks.list(json, "virtual_servers", servers, kLBVirtualServerStat);
  json.beginList("pools");
  Blocks members = blocks.after(kLBPoolStat * pools);
  for (std::uint32_t i = 0; i < pools && blocks.begin(json, i, kLBPoolStat); ++i) {
    const std::uint32_t count = bounded(head.memberCounts[i], stat_.memberCounts[i]);
    json.number("member_count", head.memberCounts[i]);
    members.list(json, "members", count, kLBMemberStat);
    json.end();
  }
  json.end();
  json.end();
}

}  // namespace TarnFirewall
