#include "TarnFWCmdCreateSpoofGuard.h"

#include <algorithm>

namespace TarnFirewall {

namespace {

constexpr unsigned int kHead = 12;

unsigned int sizeFor(const CTarnFWAddress& addresses) {
  const int type = addresses.getType();
  if (type != FW_ADDRESS_LIST && type != FW_ADDRESS_ADDRSET) {
    throw CUnsupportedException("unsupported address type", type);
  }
  const unsigned int count = addresses.getMsgSize() / sizeof(FWAddress_);
  return countedSize(kHead, sizeof(FWAddress_), std::max(count, 1u),
                     "integer overflow for the number of addresses");
}

}  // namespace

CTarnFWCmdCreateSpoofGuard::CTarnFWCmdCreateSpoofGuard(const dvs_port_* port,
                                                       std::unique_ptr<CTarnFWAddress> addresses,
                                                       const CTarnFWAddressEther& mac)
    : CTarnFWSizedCmd(port, sizeFor(*addresses)), addresses_(std::move(addresses)), mac_(mac) {}

std::string CTarnFWCmdCreateSpoofGuard::toString() const {
  return "create spoofguard with " + addresses_->toString() + " and " + mac_.toString();
}

void CTarnFWCmdCreateSpoofGuard::fill(std::span<std::byte> body) const {
  fw_ether_ mac;
  mac_.getAddress(&mac);
  storeAt(body, 0, mac);
  const std::span<std::byte> entries = body.subspan(kHead);
  const auto room = static_cast<unsigned int>(entries.size());
  unsigned int written = 0;
  if (!addresses_->toMessage(entries.data(), room, &written)) {
    throw CInsufficientMsgBufException(addresses_->getMsgSize(), room);
  }
  storeAt(body, 8, host32(written / sizeof(FWAddress_)));
}

}  // namespace TarnFirewall
