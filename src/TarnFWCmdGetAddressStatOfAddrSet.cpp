#include "TarnFWCmdGetAddressStatOfAddrSet.h"

namespace TarnFirewall {

void CTarnFWCmdGetAddressStatOfAddrSet::fill(std::span<std::byte> body) const {
  CTarnFWAddressReadCmd::fill(body);
  storeAt(body, 50, host32(clear_));
}

void CTarnFWCmdGetAddressStatOfAddrSet::read(const CTarnFWCmdReply& reply) {
  const std::uint32_t stats = records(reply).checkedSize();
  TARNFW_TRACE_IN(kCheckCmdReply, LOG_DEBUG, FW_COMPONENT_CMD, 0,
                  "retrieved %d stats of addrset %s\n", static_cast<int>(stats), name().c_str());
}

}  // namespace TarnFirewall
