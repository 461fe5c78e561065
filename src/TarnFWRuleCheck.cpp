#include "TarnFWRuleCheck.h"

#include <netinet/in.h>

#include "TarnFWException.h"

namespace TarnFirewall {

namespace {

[[noreturn]] void refuseAddress(const char* text) {
  throw CUnsupportedException(FW_STATUS_RULE_ADDRESS_MISMATCH, text);
}

bool isMAC(const CTarnFWAddress* address) { return address != nullptr && address->isMACAddress(); }
bool isIP(const CTarnFWAddress* address) { return address != nullptr && address->isIPAddress(); }

}  // namespace

const CTarnFWProtocolMatch& requireProtocol(const FWRuleParts& parts) {
  if (!parts.protocol) throw CUnsupportedException("no protocol is defined");
  return *parts.protocol;
}

void checkRuleParts(const FWRuleParts& parts, FWRuleAction_t action) {
  const bool layer3 = requireProtocol(parts).isLayer3();
  const CTarnFWAddress* const source = parts.source.get();
  const CTarnFWAddress* const destination = parts.destination.get();
  // A load balancer is treated as a translation here.
  const bool translates =
      action == FW_ACTION_SNAT || action == FW_ACTION_DNAT || action == FW_ACTION_LB;
  if (translates && !layer3) throw CUnsupportedException("cannot accept layer2 NAT rule!");
  if (action == FW_ACTION_SNAT && parts.direction != FW_DIRECTION_OUT)
    throw CUnsupportedException("SNAT rule direction is not out!");
  const bool fromIP = isIP(source);
  const bool toIP = isIP(destination);
  // An IP address is no MAC address, and need not be asked.
  if (layer3) {
    if (!fromIP && isMAC(source)) refuseAddress("layer3 rule src address is MAC");
    if (!toIP && isMAC(destination)) refuseAddress("layer3 rule dst address is MAC");
  } else {
    if (fromIP) refuseAddress("layer2 rule src address is IP");
    if (toIP) refuseAddress("layer2 rule dst address is IP");
  }
  if (fromIP && toIP && source->isIPv4Address() != destination->isIPv4Address()) {
    refuseAddress("rule src and dst are different version of IP addresses");
  }
}

void checkRuleSpecs(const CTarnFWProtocolMatch& protocol, SpecKinds connection, bool directionPorts,
                    SpecKinds tcpOnly) {
  const int number = protocol.getIPProtocol();
  const bool tcp = number == IPPROTO_TCP;
  const bool udp = number == IPPROTO_UDP;
  const bool icmp = number == IPPROTO_ICMP || number == IPPROTO_ICMPV6;
  if ((connection & specKind(FW_SPEC_ICMP_TYPE)) != 0 && !icmp)
    throw CUnsupportedException("cannot accept icmp type while icmp protocol is not specified");
  const bool ports = (connection & kPortKinds) != 0 || directionPorts;
  if (ports && !tcp && !udp)
    throw CUnsupportedException(
        "cannot accept tcp/udp port while tcp/udp protocol is not specified");
  if ((connection & tcpOnly) != 0 && !tcp)
    throw CUnsupportedException(
        "cannot accept tcp flags/options while tcp protocol is not specified");
}

}  // namespace TarnFirewall
