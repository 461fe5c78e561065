#include "TarnFWRuleAction.h"

#include "TarnFWAddress.h"
#include "TarnFWException.h"

namespace TarnFirewall {

const char* const rule_action_name[kRuleActions] = {
    "unknown", "accept",     "drop", "reject",  "jumpto", "punt", "divert", "snat",
    "dnat",    "macrewrite", "copy", "encrypt", "clear",  "lb",   "pbr"};

void CTarnFWRuleAction::setDynamic(unsigned int app, bool withMark, bool mark) {
  switch (app) {
    case FW_DYNAMIC_FTP:
      dynamicFlags_ = 3;
      break;
    case FW_DYNAMIC_ORACLE:
      dynamicFlags_ = 1;
      break;
    case FW_DYNAMIC_SUNRPC:
    case FW_DYNAMIC_DCERPC:
      dynamicFlags_ = withMark ? (mark ? 1 : 4) : 5;
      break;
    default:
      throw CUnsupportedException("unknown dynamic application");
  }
  dynamic_ = true;
  dynamicApp_ = app;
}

void CTarnFWRuleAction::enableDynamic(unsigned int app) { setDynamic(app, false, false); }

void CTarnFWRuleAction::enableDynamic(unsigned int app, bool mark) { setDynamic(app, true, mark); }

void CTarnFWRuleAction::disableDynamic() {
  dynamic_ = false;
  dynamicApp_ = 0;
  dynamicFlags_ = 0;
}

std::unique_ptr<CTarnFWAddress> CTarnFWRuleAction::replaceIPRangeAddress(const char*) {
  return nullptr;
}

void CTarnFWRuleAction::appendFlags(std::string& text) const {
  const struct {
    bool set;
    const char* word;
  } flags[] = {
      {log_, "log"}, {copy_, "copy"}, {noFlow_, "noflow"}, {rtt_, "rtt"}, {lbRule_, "lbrule"}};
  const int count = log_ + copy_ + noFlow_ + rtt_ + lbRule_;
  if (count > 0) {
    text += count > 1 ? " with {" : " with ";
    const char* separator = "";
    for (const auto& flag : flags) {
      if (!flag.set) continue;
      text += separator;
      text += flag.word;
      separator = ",";
    }
    if (count > 1) text += '}';
  }
  if (!dynamic_) return;
  static constexpr const char* applications[] = {"", " as ftp", " as oracle", " as sunrpc",
                                                 " as dcerpc"};
  text += applications[dynamicApp_];
}

std::string CTarnFWRuleAction::flagToString() const {
  std::string text;
  appendFlags(text);
  return text;
}

void CTarnFWRuleAction::appendData(std::string&) const {}

void CTarnFWRuleAction::appendTo(std::string& text) const {
  text += rule_action_name[getAction()];
  appendData(text);
  appendFlags(text);
}

std::string CTarnFWRuleAction::toString() const {
  std::string text;
  appendTo(text);
  return text;
}

std::string CTarnFWRuleAction::toString(int) const {
  std::string text = rule_action_name[getAction()];
  text += '\n';
  appendFlags(text);
  return text;
}

void CTarnFWRuleAction::writeData(fw_rule_action_&) {}

void CTarnFWRuleAction::setActionFlag(fw_rule_action_* record) const {
  constexpr unsigned int kAssigned =
      kActionLog | kActionCopy | kActionNoFlow | kActionRtt | kActionLBRule;
  unsigned int flags = record->flags & ~kAssigned;
  flags |= log_ * kActionLog | copy_ * kActionCopy | noFlow_ * kActionNoFlow | rtt_ * kActionRtt |
           lbRule_ * kActionLBRule;
  if (dynamic_) {
    flags |= kActionDynamic;
    const unsigned int kept = record->dynamicApp & 0xf000u;
    record->dynamicApp =
        static_cast<std::uint16_t>(kept | (dynamicFlags_ & 0xfu) | ((dynamicApp_ & 0xffu) << 4));
  }
  record->flags = static_cast<std::uint16_t>(flags);
}

bool CTarnFWRuleAction::writeTo(fw_rule_action_& record) {
  if (!dataFits()) return false;
  record.action = static_cast<std::uint8_t>(getAction());
  writeData(record);
  setActionFlag(&record);
  return true;
}

bool CTarnFWRuleAction::toMessage(void* buffer, unsigned int size, unsigned int* written) {
  if (size < sizeof(fw_rule_action_) || !dataFits()) return false;
  writeTo(clearRecord<fw_rule_action_>(buffer));
  if (written != nullptr) *written = sizeof(fw_rule_action_);
  return true;
}

bool CTarnFWRuleAction::isExtraRule() const {
  throw CUnsupportedException(
      "this function should not be called. use FWRule_t.is_internal flag instead");
}

}  // namespace TarnFirewall
