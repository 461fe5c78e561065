#pragma once

/// Records as text, for the flat functions and for commands that print what a reply holds.

#include "TarnFWRecords.h"
#include "TarnFWRuleRecord.h"
#include "TarnFWTypes.h"

namespace TarnFirewall {

/// What `FW_GetRuleString` and `FW_GetAddressString` do, with their results and their log lines.
FWStatus_t rulesToText(const FWRule_* rules, unsigned int count, char* text, unsigned int size,
                       bool pretty);
FWStatus_t addressesToText(const FWAddress_* addresses, unsigned int count, char* text,
                           unsigned int size);

}  // namespace TarnFirewall
