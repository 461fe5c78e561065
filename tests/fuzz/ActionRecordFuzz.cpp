// An action record of the kernel: refused by exception, or an action that writes a record which
// reads as an action with the same record and text.

#include <cstring>

#include "Fuzz.h"
#include "TarnFWException.h"
#include "TarnFWRuleActionFactory.h"

using namespace TarnFirewall;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    unsigned int used = 1;
    const auto action =
        CTarnFWRuleActionFactory::newFromMsgBuf(data, static_cast<unsigned int>(size), &used);
    require((action == nullptr) == (size < sizeof(fw_rule_action_)));
    if (action == nullptr) return 0;
    require(!action->toString().empty());
    require(!action->toString(0).empty());
    fw_rule_action_ first{};
    unsigned int length = 0;
    require(action->toMessage(&first, sizeof first, &length) && length == sizeof first);
    const auto again = CTarnFWRuleActionFactory::newFromMsgBuf(&first);
    fw_rule_action_ second{};
    require(again->toMessage(&second, sizeof second, &length));
    require(std::memcmp(&first, &second, sizeof first) == 0);
  } catch (const CTarnFWException& e) {
    require(e.retcode() != FW_STATUS_OK);
  }
  return 0;
}
