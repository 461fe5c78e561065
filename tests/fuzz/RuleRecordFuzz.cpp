// A rule record of the kernel: refused, or a rule that prints itself and writes a record that reads
// as a rule with the same record.

#include <cstring>

#include "Fuzz.h"
#include "TarnFWException.h"
#include "TarnFWRuleFactory.h"

using namespace TarnFirewall;

namespace {

FWRule_ written(CTarnFWRule& rule) {
  FWRule_ record{};
  unsigned int length = 0;
  require(rule.toMessage(&record, sizeof record, &length) && length == sizeof record);
  return record;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  FWRule_ record{};
  if (size != 0) {
    std::memcpy(static_cast<void*>(&record), data, size < sizeof record ? size : sizeof record);
  }
  std::unique_ptr<CTarnFWRule> rule;
  try {
    rule = CTarnFWRuleFactory::newFromMsgBuf(&record);
  } catch (const CTarnFWException&) {
    return 0;
  }
  if (rule == nullptr) return 0;
  require(!rule->toString().empty());
  require(!rule->toString2().empty());
  FWRule_ first{};
  try {
    first = written(*rule);
  } catch (const CDuplicateProtocolSpecException&) {
    return 0;  // two specs of the record want one place
  }
  // TCP options come back as whatever spec their length word looks like, so that a rule that has
  // some need not be read again.
  const FWSessionBlock_& session = first.session;
  const std::uint8_t none[2] = {};
  if (std::memcmp(&session.optionsHeader, none, sizeof none) != 0) return 0;
  const auto again = CTarnFWRuleFactory::newFromMsgBuf(&first);
  require(again != nullptr);
  const FWRule_ second = written(*again);
  require(std::memcmp(&first, &second, sizeof first) == 0);
  return 0;
}
