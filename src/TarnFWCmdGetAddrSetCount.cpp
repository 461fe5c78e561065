#include "TarnFWCmdGetAddrSetCount.h"

namespace TarnFirewall {

std::string CTarnFWCmdGetAddrSetCount::toString() const {
  return "describe count of addrset" + dvsportToString("of");
}

void CTarnFWCmdGetAddrSetCount::fill(std::span<std::byte> body) const {
  storeAt(body, 0, static_cast<std::uint8_t>(type_ & 0x0f));
}

void CTarnFWCmdGetAddrSetCount::print(const CTarnFWCmdReply& reply,
                                      const PrettyPrinting& out) const {
  out.print(out.context, "addrset count : %d\n", static_cast<int>(count(reply)));
}

}  // namespace TarnFirewall
