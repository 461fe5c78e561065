#include "TarnFWRuleFactory.h"

#include "TarnFWLog.h"
#include "TarnFWRuleBuilder.h"

namespace TarnFirewall {

std::unique_ptr<CTarnFWRule> CTarnFWRuleFactory::newFromMsgBuf(const FWRule_* record,
                                                               CTarnFWLoadMemory* memory) {
  std::unique_ptr<CTarnFWRule> rule = CTarnFWRuleBuilder::buildRule(*record, memory);
  if (!rule) return nullptr;
  if ((record->origin & kRuleInternal) != 0) rule->setInternal();
  const unsigned int af = ruleAF(*record);
  if (af != 0) {
    if ((record->origin & kRuleAFDerived) != 0) {
      TARNFW_TRACE(FW_COMPONENT_RULE, 0, "ignoring rule af: %d\n", static_cast<int>(af));
    } else {
      TARNFW_TRACE(FW_COMPONENT_RULE, 0, "reading rule af: %d\n", static_cast<int>(af));
      rule->setAF(static_cast<FWRuleAF_t>(af));
    }
  }
  return rule;
}

}  // namespace TarnFirewall
