#include "TarnFWCmdGetUuid.h"

namespace TarnFirewall {

CTarnFWCmdGetUuid::CTarnFWCmdGetUuid(const dvs_port_* port, const FWAddress_& address,
                                     unsigned int count)
    : CTarnFWPrinted(port, countedSize(0, sizeof(FWUuidEntry_), count, "number of uuids")),
      address_(address),
      count_(count) {}

CTarnFWReplyRecords<FWUuidEntry_> CTarnFWCmdGetUuid::entries(const CTarnFWCmdReply& reply) const {
  // The reply does not count them: they end with the first one without a text.
  const auto all = reply.records<FWUuidEntry_>(0, count_, count_);
  std::uint32_t filled = 0;
  while (filled < all.size() && all[filled].item.text[0] != '\0') ++filled;
  return reply.records<FWUuidEntry_>(0, filled, count_);
}

void CTarnFWCmdGetUuid::fill(std::span<std::byte> body) const {
  if (body.empty()) return;
  FWUuidEntry_ request{};
  request.address = address_;
  request.count = count_;
  storeAt(body, 0, request);
}

void CTarnFWCmdGetUuid::print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const {
  if (entries(reply).size() == 0) out.print(out.context, "uuid : EMPTY\n");
}

}  // namespace TarnFirewall
