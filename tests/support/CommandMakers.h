#pragma once

/// All commands that are built, and short ways to make one.

#include <memory>
#include <string>

#include "TarnFWCmdClearAddrSet.h"
#include "TarnFWCmdClearRootRuleSet.h"
#include "TarnFWCmdClearRuleSet.h"
#include "TarnFWCmdClearRuleSetJump.h"
#include "TarnFWCmdConfigSharedAddrSet.h"
#include "TarnFWCmdCreateAddrSet.h"
#include "TarnFWCmdCreateContainer.h"
#include "TarnFWCmdCreateRuleSet.h"
#include "TarnFWCmdDestroyAddrSet.h"
#include "TarnFWCmdDestroyAllAddrSet.h"
#include "TarnFWCmdDestroyAllRuleSet.h"
#include "TarnFWCmdDestroyRuleSet.h"
#include "TarnFWCmdGetAddrSetCount.h"
#include "TarnFWCmdGetAddrSetInfo.h"
#include "TarnFWCmdGetAddrSetList.h"
#include "TarnFWCmdGetAddrSetStatList.h"
#include "TarnFWCmdGetAddrSetTypeAndSize.h"
#include "TarnFWCmdGetAddrValidOfAddrSet.h"
#include "TarnFWCmdGetAddressOfAddrSet.h"
#include "TarnFWCmdGetAddressStatOfAddrSet.h"
#include "TarnFWCmdGetDlbOfRuleSet.h"
#include "TarnFWCmdGetElementsOfContainer.h"
#include "TarnFWCmdGetRootRuleSet.h"
#include "TarnFWCmdGetRuleCountOfRuleSet.h"
#include "TarnFWCmdGetRuleOfRuleSet.h"
#include "TarnFWCmdGetRuleSetCount.h"
#include "TarnFWCmdGetRuleSetInfo.h"
#include "TarnFWCmdGetRuleSetJump.h"
#include "TarnFWCmdGetRuleSetList.h"
#include "TarnFWCmdGetSharedAddrSet.h"
#include "TarnFWCmdGetStatOfRuleSet.h"
#include "TarnFWCmdSetAddrSetCfg.h"
#include "TarnFWCmdSetRootRuleSet.h"
#include "TarnFWCmdSetRuleSetJump.h"
#include "TarnFWTypes.h"

using CommandPtr = std::unique_ptr<TarnFirewall::CTarnFWCmd>;

/// A name that is kept as it is, with or without a NUL.
template <typename Id>
Id idOf(const std::string& name) {
  Id id{};
  name.copy(id.text, sizeof id.text);
  return id;
}
inline TarnFirewall::FWRuleSetID_t ruleSet(const std::string& name) {
  return idOf<TarnFirewall::FWRuleSetID_t>(name);
}
inline TarnFirewall::FWAddrSetID_t addrSet(const std::string& name) {
  return idOf<TarnFirewall::FWAddrSetID_t>(name);
}

/// A command without a selector, with these arguments.
template <typename Class, auto... arguments>
CommandPtr plain() {
  return std::make_unique<Class>(nullptr, arguments...);
}
