#pragma once

#include <memory>

#include "TarnFWLoadMemory.h"
#include "TarnFWRuleAction.h"

namespace TarnFirewall {

/// Makes actions from their records.
class CTarnFWRuleActionFactory {
 public:
  /// Throws CInvalidRuleActionException for an unknown code or unknown flag bits,
  /// CUnsupportedException for an unknown dynamic application, and what the action's class throws.
  /// A null `memory` makes an object of its own.
  static std::unique_ptr<CTarnFWRuleAction> newFromMsgBuf(const fw_rule_action_* record,
                                                          CTarnFWLoadMemory* memory = nullptr);

  /// Reads one record when `size` holds one: `*used` is then 330, else 0 with a null result.
  static std::unique_ptr<CTarnFWRuleAction> newFromMsgBuf(const void* buffer, unsigned int size,
                                                          unsigned int* used);
};

}  // namespace TarnFirewall
