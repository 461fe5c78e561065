#include "TarnFWCmdSetRootRuleSet.h"

#include <strings.h>

#include "TarnFWProtocolSpecStateless.h"
#include "TarnFWRuleActionJumpto.h"

namespace TarnFirewall {

namespace {

std::string quotedIfEmpty(const std::string& name) { return name.empty() ? "\"\"" : name; }

}  // namespace

CTarnFWCmdSetRootRuleSet::CTarnFWCmdSetRootRuleSet(const dvs_port_* port)
    : CTarnFWRuleSetCreateCmd(port, FWRuleSetID_t{}, std::make_unique<CTarnFWRuleList>(false)) {}

CTarnFWCmdSetRootRuleSet::CTarnFWCmdSetRootRuleSet(const dvs_port_* port,
                                                   const FWRuleSetID_t& layer3,
                                                   const FWRuleSetID_t& layer2)
    : CTarnFWCmdSetRootRuleSet(port) {
  layer3_ = layer3;
  layer2_ = layer2;
  const bool hasLayer3 = layer3.text[0] != '\0';
  const bool hasLayer2 = layer2.text[0] != '\0';
  if (!hasLayer3 && !hasLayer2) {
    throw CUnsupportedException(FW_STATUS_INVALID_ARGUMENT, "root ruleset name is empty");
  }
  if (hasLayer3) addJump(true, layer3);
  if (hasLayer2) addJump(false, layer2);
}

void CTarnFWCmdSetRootRuleSet::addJump(bool layer3, const FWRuleSetID_t& target) {
  const unsigned int id = rules().getRuleCount() + 1;
  FWRuleParts parts;
  parts.id = id;
  parts.position = static_cast<int>(id);
  parts.protocol.emplace(protocolLayer(layer3));
  parts.connection.addSpec(std::make_unique<CTarnFWProtocolSpecStateless>());
  parts.action = std::make_unique<CTarnFWRuleActionJumpto>(fieldText(target.text).c_str());
  ownRules().addRule(std::make_unique<CTarnFWRule>(std::move(parts)));
}

std::string CTarnFWCmdSetRootRuleSet::toString() const {
  const std::string first = fieldText(layer3_.text);
  const std::string second = fieldText(layer2_.text);
  std::string text = "set root ruleset " + quotedIfEmpty(first);
  if (strcasecmp(second.c_str(), (first + "_L2").c_str()) != 0) {
    text += " and " + quotedIfEmpty(second);
  }
  return text;
}

}  // namespace TarnFirewall
