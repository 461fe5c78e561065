#include "TarnFWRuleActionKeyPolicy.h"

#include <algorithm>

namespace TarnFirewall {

void CTarnFWRuleActionKeyPolicy::appendKeyPolicy(CTarnFWText& text) const {
  if (keyPolicy_.empty()) return;
  text += " keypolicy ";
  text += keyPolicy_;
}

void CTarnFWRuleActionKeyPolicy::writeData(fw_rule_action_& record) {
  const std::size_t size = std::min(keyPolicy_.size(), sizeof record.keyPolicy - 1);
  std::copy_n(keyPolicy_.data(), size, record.keyPolicy);
}

}  // namespace TarnFirewall
