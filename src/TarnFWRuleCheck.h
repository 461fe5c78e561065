#pragma once

#include <cstdint>

#include "TarnFWRuleAction.h"
#include "TarnFWTypes.h"

namespace TarnFirewall {

class CTarnFWAddress;
class CTarnFWProtocol;

/// What a rule's protocol, action and addresses must have to do with each other, in the one order
/// in which the builder and the rule both look. Addresses may be null.
///
/// Throws CUnsupportedException: status 53 where an address is at fault, else 7.
void checkRuleParts(const CTarnFWProtocol& protocol, FWRuleAction_t action,
                    FWRuleDirection_t direction, const CTarnFWAddress* source,
                    const CTarnFWAddress* destination);

/// A set of spec kinds, one bit each.
using SpecKinds = std::uint32_t;

constexpr SpecKinds specKind(unsigned int kind) { return SpecKinds{1} << kind; }

inline constexpr SpecKinds kPortKinds = specKind(1) | specKind(2) | specKind(3);

/// What the specs of a rule must have to do with its protocol. `connection` are the kinds of the
/// connection specs, `directionPorts` says that a port stands at source or destination, `tcpOnly`
/// are the kinds that only TCP has. Throws CUnsupportedException.
void checkRuleSpecs(const CTarnFWProtocol& protocol, SpecKinds connection, bool directionPorts,
                    SpecKinds tcpOnly);

}  // namespace TarnFirewall
