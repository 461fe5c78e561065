#include "TarnFWCmdSetDnsConfigProfile.h"

#include <algorithm>
#include <utility>

namespace TarnFirewall {

namespace {

unsigned int sizeFor(const std::vector<FWAddress_>& addresses) {
  const auto count = static_cast<unsigned int>(std::min<std::size_t>(addresses.size(), UINT32_MAX));
  return countedSize(sizeof(FWDnsConfigProfile_), sizeof(FWAddress_), count,
                     "integer overflow for the number of addresses");
}

}  // namespace

CTarnFWCmdSetDnsConfigProfile::CTarnFWCmdSetDnsConfigProfile(const dvs_port_* port,
                                                             unsigned int kind,
                                                             unsigned int seconds,
                                                             std::vector<FWAddress_> addresses)
    : CTarnFWSizedCmd(port, sizeFor(addresses)), addresses_(std::move(addresses)) {
  if (kind > UINT8_MAX) throw CUnsupportedException("unsupported time to live", kind);
  profile_.timeToLiveKind = static_cast<std::uint8_t>(kind);
  profile_.timeToLive = seconds;
  profile_.addressCount = static_cast<std::uint32_t>(addresses_.size());
}

std::string CTarnFWCmdSetDnsConfigProfile::toString() const {
  return "set dns config profile" + dvsportToString("of");
}

void CTarnFWCmdSetDnsConfigProfile::fill(std::span<std::byte> body) const {
  storeAt(body, 0, profile_);
  std::size_t at = sizeof profile_;
  for (const FWAddress_& address : addresses_) {
    storeAt(body, at, address);
    at += sizeof address;
  }
}

}  // namespace TarnFirewall
