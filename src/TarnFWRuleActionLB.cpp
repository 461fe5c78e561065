#include "TarnFWRuleActionLB.h"

#include "TarnFWException.h"
#include "TarnFWText.h"

namespace TarnFirewall {

CTarnFWRuleActionLB::CTarnFWRuleActionLB(unsigned short type) : CTarnFWRuleActionLB(type, 0, 0) {}

CTarnFWRuleActionLB::CTarnFWRuleActionLB(unsigned short type, unsigned short idleTimeout,
                                         unsigned short closeTimeout)
    : type_(type), idleTimeout_(idleTimeout), closeTimeout_(closeTimeout) {
  if (type > 2) throw CUnsupportedException("Invalid LB Type");
}

CTarnFWRuleActionLB::CTarnFWRuleActionLB(unsigned short type, unsigned short idleTimeout,
                                         unsigned short closeTimeout, const char* options)
    : CTarnFWRuleActionLB(type, idleTimeout, closeTimeout) {
  hasOptions_ = true;
  options_ = options != nullptr ? options : "";
  if (options_.size() >= sizeof fw_rule_action_::lbOptions)
    throw CUnsupportedException("Invalid LB Options");
}

void CTarnFWRuleActionLB::appendData(CTarnFWText& text) const {
  // Two blanks between the word and its type: scripts split there.
  text += "  lbtype ";
  text += type_ == 0 ? "L4" : "L7";
  if (idleTimeout_ != 0) {
    text += " lbidletimeout ";
    appendDecimal(text, idleTimeout_);
  }
  if (closeTimeout_ != 0) {
    text += " lbclosetimeout ";
    appendDecimal(text, closeTimeout_);
  }
  if (hasOptions_) {
    text += " lboptions ";
    text += options_;
  }
}

void CTarnFWRuleActionLB::writeData(fw_rule_action_& record) {
  record.lbType = static_cast<std::uint8_t>(type_);
  record.lbIdleTimeout = idleTimeout_;
  record.lbCloseTimeout = closeTimeout_;
  if (hasOptions_) {
    record.present = kActionHasLBOptions;
    options_.copy(record.lbOptions, options_.size());
  }
}

}  // namespace TarnFirewall
