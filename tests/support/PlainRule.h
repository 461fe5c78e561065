#pragma once

/// A rule for tests that need one and don't care what it does.

#include <memory>

#include "TarnFWRule.h"

/// "rule ID at POSITION DIRECTION protocol any from any to any accept;"
inline std::unique_ptr<TarnFirewall::CTarnFWRule> plainRule(
    unsigned int id, int position, TarnFirewall::FWRuleDirection_t direction) {
  using namespace TarnFirewall;
  FWRuleParts parts;
  parts.id = id;
  parts.position = position;
  parts.direction = direction;
  parts.protocol.emplace(FWProtocolLayer::ip);
  return std::make_unique<CTarnFWRule>(std::move(parts));
}
