#include "TarnFWCmdCreateRuleSet.h"

#include <cstring>

namespace TarnFirewall {

namespace {

FWRuleSetID_t idOf(const char* name) {
  FWRuleSetID_t id{};
  const std::size_t length = std::strlen(name);
  if (length >= sizeof id.text) throw CIDTooLongException(name);
  std::memcpy(id.text, name, length);
  return id;
}

}  // namespace

CTarnFWCmdCreateRuleSet::CTarnFWCmdCreateRuleSet(const dvs_port_* port, const FWRuleSetID_t& name,
                                                 const FWRuleSetID_t& jump)
    : CTarnFWCmdCreateRuleSet(port, name, jump, std::make_unique<CTarnFWRuleList>(false)) {}

CTarnFWCmdCreateRuleSet::CTarnFWCmdCreateRuleSet(const dvs_port_* port, const FWRuleSetID_t& name,
                                                 const FWRuleSetID_t& jump,
                                                 std::unique_ptr<CTarnFWRuleList> list)
    : CTarnFWRuleSetCreateCmd(port, name, std::move(list)), jump_(jump) {}

CTarnFWCmdCreateRuleSet::CTarnFWCmdCreateRuleSet(const dvs_port_* port, const char* name)
    : CTarnFWCmdCreateRuleSet(port, idOf(name), FWRuleSetID_t{}) {}

CTarnFWCmdCreateRuleSet::CTarnFWCmdCreateRuleSet(const dvs_port_* port, const char* name,
                                                 std::unique_ptr<CTarnFWRuleList> list)
    : CTarnFWCmdCreateRuleSet(port, idOf(name), FWRuleSetID_t{}, std::move(list)) {}

std::string CTarnFWCmdCreateRuleSet::toString() const {
  CTarnFWText text;
  text += "create ruleset " + fieldText(name().text) + dvsportToString("for");
  if (const std::string jump = fieldText(jump_.text); !jump.empty()) text += " jumpto " + jump;
  if (rules().getRuleCount() != 0) {
    text += " with {\n";
    rules().appendTo(text);
    text += "\n}\n";
  }
  return text.str();
}

}  // namespace TarnFirewall
