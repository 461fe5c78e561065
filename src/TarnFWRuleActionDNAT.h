#pragma once

#include "TarnFWRuleActionNAT.h"

namespace TarnFirewall {

inline constexpr unsigned int kPoolOptions = 6;

/// Words of the pool options, by their number.
extern const char* const rule_poolopt_name[kPoolOptions];

/// Translates the destination address, and the port if it has one.
///
/// The constructors take the translation address or read it from its record. Two ports throw
/// CUnsupportedException when the first is above the last; equal ones are accepted.
class CTarnFWRuleActionDNAT final : public CTarnFWRuleActionNAT {
 public:
  CTarnFWRuleActionDNAT(std::unique_ptr<CTarnFWAddress> address, FWRulePoolOpt_t pool,
                        unsigned short firstPort, unsigned short lastPort,
                        unsigned short poolValue);
  CTarnFWRuleActionDNAT(std::unique_ptr<CTarnFWAddress> address, FWRulePoolOpt_t pool,
                        unsigned short port, unsigned short poolValue);
  CTarnFWRuleActionDNAT(std::unique_ptr<CTarnFWAddress> address, FWRulePoolOpt_t pool,
                        unsigned short poolValue);
  CTarnFWRuleActionDNAT(const FWAddress_* record, FWRulePoolOpt_t pool, unsigned short firstPort,
                        unsigned short lastPort, unsigned short poolValue);
  CTarnFWRuleActionDNAT(const FWAddress_* record, FWRulePoolOpt_t pool, unsigned short port,
                        unsigned short poolValue);
  CTarnFWRuleActionDNAT(const FWAddress_* record, FWRulePoolOpt_t pool, unsigned short poolValue);

  FWRuleAction_t getAction() const override { return FW_ACTION_DNAT; }

 private:
  /// Of the ports, none, the first or both are in use.
  struct Ports {
    std::uint16_t first = 0;
    std::uint16_t last = 0;
    unsigned int present = 0;  // kActionHasPort, kActionHasLastPort
  };

  template <typename Address>
  CTarnFWRuleActionDNAT(Address address, FWRulePoolOpt_t pool, Ports ports,
                        unsigned short poolValue);

  void appendData(CTarnFWText& text) const override;
  void writeData(fw_rule_action_& record) override;

  Ports ports_;
  FWRulePoolOpt_t pool_;
  std::uint16_t poolValue_;
};

}  // namespace TarnFirewall
