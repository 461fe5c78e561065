#include "TarnFWCmdGetAddrSetCount.h"

#include "TarnFWLog.h"

namespace TarnFirewall {

std::string CTarnFWCmdGetAddrSetCount::toString() const {
  return "describe count of addrset" + dvsportToString("of");
}

void CTarnFWCmdGetAddrSetCount::fill(std::span<std::byte> body) const {
  storeAt(body, 0, static_cast<std::uint8_t>(type_ & 0x0f));
}

void CTarnFWCmdGetAddrSetCount::read(const CTarnFWCmdReply& reply) {
  if (const PrettyPrinting out; out) {
    out.print(out.context, "addrset count : %d\n", static_cast<int>(count(reply)));
  }
}

}  // namespace TarnFirewall
