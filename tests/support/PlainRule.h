#pragma once

/// A rule for tests that need one and don't care what it does.

#include <memory>

#include "TarnFWRule.h"

/// "rule ID at POSITION DIRECTION protocol any from any to any accept;"
inline std::unique_ptr<TarnFirewall::CTarnFWRule> plainRule(
    unsigned int id, int position, TarnFirewall::FWRuleDirection_t direction) {
  using namespace TarnFirewall;
  return std::make_unique<CTarnFWRule>(
      id, position, direction, CTarnFWProtocol(true), CTarnFWProtocolSpecList(FW_SPEC_DIR_BOTH),
      nullptr, CTarnFWProtocolSpecList(FW_SPEC_DIR_SOURCE), nullptr,
      CTarnFWProtocolSpecList(FW_SPEC_DIR_DESTINATION), nullptr, nullptr, nullptr);
}
