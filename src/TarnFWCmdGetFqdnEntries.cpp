#include "TarnFWCmdGetFqdnEntries.h"

#include <algorithm>

namespace TarnFirewall {

FWFqdnEntry_ CTarnFWCmdGetFqdnEntries::entry(const CTarnFWCmdReply& reply) {
  const auto record = reply.record<FWFqdnRecord_>(0);
  FWFqdnEntry_ entry{};
  entry.address = record.address;
  entry.family = record.family;
  entry.uuidCount = record.uuidCount;
  entry.startTime = record.startTime;
  entry.timeToLive = record.timeToLive;
  entry.infinite = record.infinite;
  return entry;
}

void CTarnFWCmdGetFqdnEntries::fill(std::span<std::byte> body) const {
  FWFqdnRecord_ request{};
  std::copy_n(before_.value, isFqdnIPv4(family_) ? 4 : 16, request.address.value);
  request.family = family_;
  storeAt(body, 0, request);
}

void CTarnFWCmdGetFqdnEntries::print(const CTarnFWCmdReply& reply,
                                     const PrettyPrinting& out) const {
  const std::uint32_t count = reply.word(offsetof(FWFqdnRecord_, uuidCount));
  out.print(out.context, "domain count : %d\n", static_cast<int>(count));
}

}  // namespace TarnFirewall
