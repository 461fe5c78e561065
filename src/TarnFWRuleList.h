#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "TarnFWObject.h"
#include "TarnFWRule.h"
#include "TarnFWTypes.h"

namespace TarnFirewall {

/// A run of rules on its way to or from the kernel, in the order in which they were added.
class CTarnFWRuleList final : public ITarnFWObject {
 public:
  static constexpr int kType = 22;

  /// The rules of a borrowed list stay their caller's and must outlive it.
  explicit CTarnFWRuleList(bool borrowed) : CTarnFWRuleList(dvs_port_{}, borrowed) {}
  CTarnFWRuleList(const dvs_port_& port, bool borrowed) : port_(port), borrowed_(borrowed) {}
  ~CTarnFWRuleList() override;
  CTarnFWRuleList(const CTarnFWRuleList&) = delete;
  CTarnFWRuleList& operator=(const CTarnFWRuleList&) = delete;

  /// Always true. The list owns the rule unless it is a borrowed list.
  bool addRule(CTarnFWRule* rule);
  /// The same for a list that owns its rules.
  bool addRule(std::unique_ptr<CTarnFWRule> rule);

  unsigned int getRuleCount() const { return static_cast<unsigned int>(rules_.size()); }
  std::span<const std::unique_ptr<CTarnFWRule>> getRules() const { return rules_; }
  const dvs_port_& getPort() const { return port_; }

  int getType() const override { return kType; }
  /// 892 for each rule. Throws CIntegerOverflowException where that needs more than 32 bits.
  unsigned int getMsgSize() const override;
  /// Each rule's text and a line end.
  std::string toString() const override;
  void appendTo(CTarnFWText& text) const override;
  std::string to_string() const { return toString(); }
  /// Writes the rules in order up to the first that fails; `written` adds up their sizes.
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) override;
  /// The same into a buffer that is zero.
  bool toFreshMessage(void* buffer, unsigned int size, unsigned int* written);

 private:
  bool write(void* buffer, unsigned int size, unsigned int* written, bool fresh);

  dvs_port_ port_;
  std::vector<std::unique_ptr<CTarnFWRule>> rules_;  // released, not deleted, by a borrowed list
  bool borrowed_;
};

}  // namespace TarnFirewall
