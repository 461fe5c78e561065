#pragma once

/// Rules that tests make of parts, and what their records have in common.

#include <memory>
#include <utility>

#include "Expect.h"
#include "Message.h"
#include "TarnFWAddrSetID.h"
#include "TarnFWAddressEther.h"
#include "TarnFWAddressIPv4.h"
#include "TarnFWAddressIPv6.h"
#include "TarnFWProtocolSpecDSCP.h"
#include "TarnFWProtocolSpecICMPType.h"
#include "TarnFWProtocolSpecL4Port.h"
#include "TarnFWProtocolSpecL4PortRange.h"
#include "TarnFWProtocolSpecL4PortSet.h"
#include "TarnFWProtocolSpecSloppy.h"
#include "TarnFWProtocolSpecStateless.h"
#include "TarnFWProtocolSpecStrict.h"
#include "TarnFWProtocolSpecTCPFlags.h"
#include "TarnFWProtocolSpecTCPOptions.h"
#include "TarnFWRule.h"
#include "TarnFWRuleActionAccept.h"

namespace RuleOfParts {

using namespace TarnFirewall;

/// The parts of a rule, by default of one that accepts everything on layer 3.
struct Parts : FWRuleParts {
  Parts() {
    id = 7;
    position = -1;
    protocol.emplace(FWProtocolLayer::ip);
    action = std::make_unique<CTarnFWRuleActionAccept>();
  }
  explicit Parts(unsigned short ipProtocol) : Parts() { layer3(ipProtocol); }

  Parts& layer3(unsigned short number, bool negated = false) {
    protocol = CTarnFWProtocol(FWProtocolLayer::ip, number, negated);
    return *this;
  }
  Parts& layer2(unsigned short number, bool negated = false) {
    protocol = CTarnFWProtocol(FWProtocolLayer::ethernet, number, negated);
    return *this;
  }
  template <typename Spec, typename... Arguments>
  Parts& with(Arguments... arguments) {
    return add<Spec>(connection, arguments...);
  }
  template <typename Spec, typename... Arguments>
  Parts& from(Arguments... arguments) {
    return add<Spec>(sourcePorts, arguments...);
  }
  template <typename Spec, typename... Arguments>
  Parts& to(Arguments... arguments) {
    return add<Spec>(destinationPorts, arguments...);
  }
  template <typename Address, typename... Arguments>
  Parts& src(Arguments... arguments) {
    source = std::make_unique<Address>(arguments...);
    return *this;
  }
  template <typename Address, typename... Arguments>
  Parts& dst(Arguments... arguments) {
    destination = std::make_unique<Address>(arguments...);
    return *this;
  }
  template <typename Action, typename... Arguments>
  Parts& act(Arguments&&... arguments) {
    action = std::make_unique<Action>(std::forward<Arguments>(arguments)...);
    return *this;
  }
  template <typename Rule = CTarnFWRule>
  Rule make() {
    return Rule(std::move(*this));
  }

 private:
  template <typename Spec, typename... Arguments>
  Parts& add(CTarnFWProtocolSpecList& list, Arguments... arguments) {
    list.addSpec(std::make_unique<Spec>(arguments...));
    return *this;
  }
};

/// The record of the default parts without its mode: id 7, position -1, layer 3, accept.
inline Bytes plainRecord() {
  return Bytes(892).at(0, {7, 0, 0, 0, 0xff, 0xff, 0xff, 0xff}).at(750, {1}).at(790, {0x10});
}

/// A TCP rule with its usual record: flags has protocol and layer 3, number 6, mode 1.
inline Parts tcp() { return Parts(6); }
inline Bytes tcpRecord() { return plainRecord().at(790, {0x14}).at(794, {6, 0}).at(884, {1}); }

using Port = CTarnFWProtocolSpecL4Port;
using PortRange = CTarnFWProtocolSpecL4PortRange;
using PortSet = CTarnFWProtocolSpecL4PortSet;
using ICMPType = CTarnFWProtocolSpecICMPType;
using TCPFlags = CTarnFWProtocolSpecTCPFlags;
using TCPOptions = CTarnFWProtocolSpecTCPOptions;
using Stateless = CTarnFWProtocolSpecStateless;
using Strict = CTarnFWProtocolSpecStrict;
using Sloppy = CTarnFWProtocolSpecSloppy;
using DSCP = CTarnFWProtocolSpecDSCP;
using IPv4 = CTarnFWAddressIPv4;
using IPv6 = CTarnFWAddressIPv6;
using Ether = CTarnFWAddressEther;
using SetID = CTarnFWAddrSetID;

}  // namespace RuleOfParts
