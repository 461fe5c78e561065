#pragma once

#include <cstdint>

#include "TarnFWRuleParts.h"

namespace TarnFirewall {

/// Checks that protocol, direction and addresses of the parts go together with each other and with
/// the action, in the one order in which the builder and the rule both look.
///
/// Throws CUnsupportedException: status 53 where an address is at fault, else 7.
void checkRuleParts(const FWRuleParts& parts, FWRuleAction_t action);

/// Throws CUnsupportedException without a protocol.
const CTarnFWProtocolMatch& requireProtocol(const FWRuleParts& parts);

/// A set of spec kinds, one bit each.
using SpecKinds = std::uint32_t;

constexpr SpecKinds specKind(unsigned int kind) { return SpecKinds{1} << kind; }

inline constexpr SpecKinds kPortKinds = specKind(1) | specKind(2) | specKind(3);

/// Checks that the specs of a rule go with its protocol. `connection` are the kinds of the
/// connection specs, `directionPorts` says that a port stands at source or destination, `tcpOnly`
/// are the kinds that only TCP has. Throws CUnsupportedException.
void checkRuleSpecs(const CTarnFWProtocolMatch& protocol, SpecKinds connection, bool directionPorts,
                    SpecKinds tcpOnly);

}  // namespace TarnFirewall
