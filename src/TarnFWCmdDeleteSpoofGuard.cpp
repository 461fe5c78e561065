#include "TarnFWCmdDeleteSpoofGuard.h"

#include <algorithm>

namespace TarnFirewall {

namespace {

FWSpoofGuardMac bodyOf(const CTarnFWAddressEther* mac) {
  FWSpoofGuardMac body{};
  if (mac == nullptr) return body;
  fw_ether_ address;
  mac->getAddress(&address);
  std::copy(std::begin(address.octet), std::end(address.octet), body.begin());
  return body;
}

}  // namespace

CTarnFWCmdDeleteSpoofGuard::CTarnFWCmdDeleteSpoofGuard(const dvs_port_* port,
                                                       const CTarnFWAddressEther* mac)
    : CTarnFWRecordCmd(port, bodyOf(mac)) {}

}  // namespace TarnFirewall
