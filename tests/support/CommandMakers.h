#pragma once

/// Short ways to make a command.

#include <memory>
#include <string>

#include "TarnFWCmd.h"
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
