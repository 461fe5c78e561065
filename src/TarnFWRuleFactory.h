#pragma once

#include <memory>

#include "TarnFWLoadMemory.h"
#include "TarnFWRule.h"
#include "TarnFWRuleRecord.h"

namespace TarnFirewall {

/// Makes rules from their records.
class CTarnFWRuleFactory {
 public:
  /// Null when the parts of the record make no rule, which is logged; throws what the readers of
  /// the parts throw. A family that was derived from the addresses is not read back. The rule
  /// writes a record of its own, not the one read. The rule and its parts are made in `memory`, or
  /// as objects of their own when that is null.
  static std::unique_ptr<CTarnFWRule> newFromMsgBuf(const FWRule_* record,
                                                    CTarnFWLoadMemory* memory = nullptr);
};

}  // namespace TarnFirewall
