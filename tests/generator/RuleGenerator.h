#pragma once

#include <memory>

#include "Choices.h"
#include "TarnFWAddress.h"
#include "TarnFWProtocolSpec.h"
#include "TarnFWRule.h"
#include "TarnFWRuleAction.h"
#include "TarnFWRuleBuilder.h"

/// What of a rule is known not to survive a way through its record, by the layout or on purpose.
struct RuleLosses {
  bool dscp = false;              ///< the readers leave the value out
  bool tcpOptions = false;        ///< their length word is read as a header
  bool macRange = false;          ///< written, and refused on reading
  bool hostBits = false;          ///< of a block: the record holds it masked
  bool lbWithoutOptions = false;  ///< read back as one with empty options
  bool specOrder = false;         ///< the record has a place for each spec; readers go by place

  bool any() const {
    return dscp || tcpOptions || macRange || hostBits || lbWithoutOptions || specOrder;
  }
};

/// Makes rules that the library must accept, from a sequence of choices. Every class of address,
/// port, spec and action comes up, with every flag.
class RuleGenerator {
 public:
  explicit RuleGenerator(Choices choices) : choices_(choices) {}

  /// A rule and what it is known to lose. Never null: a builder that refuses is a finding.
  std::unique_ptr<TarnFirewall::CTarnFWRule> rule(RuleLosses* losses);

  /// An address of a family: 4, 6, or 2 for MAC addresses.
  std::unique_ptr<TarnFirewall::CTarnFWAddress> address(int family, RuleLosses* losses);
  std::unique_ptr<TarnFirewall::CTarnFWProtocolSpec> ports(unsigned char dir);
  std::unique_ptr<TarnFirewall::CTarnFWRuleAction> action(bool layer3, bool out, int family,
                                                          RuleLosses* losses);

  Choices& choices() { return choices_; }

 private:
  std::unique_ptr<TarnFirewall::CTarnFWAddress> natAddress(int family, RuleLosses* losses);
  std::unique_ptr<TarnFirewall::CTarnFWRuleAction> actionWithData(unsigned int code, int family,
                                                                  RuleLosses* losses);
  void addSpecs(TarnFirewall::CTarnFWRuleBuilder& builder, bool tcp, bool icmp, RuleLosses* losses);

  Choices choices_;
};
