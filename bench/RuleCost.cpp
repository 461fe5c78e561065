// rule_cost MODE COUNT: does one thing COUNT times, for counting its instructions from outside.
//
//   copy    copies a record                       (the floor)
//   write   builds a rule from its parts and writes its record
//   read    reads a record and makes its text

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "RuleParts.h"

using namespace TarnFirewall;

int main(int count, char** arguments) {
  if (count != 3) {
    std::fprintf(stderr, "usage: rule_cost copy|write|read COUNT\n");
    return 2;
  }
  const std::string mode = arguments[1];
  const long times = std::strtol(arguments[2], nullptr, 10);
  FWRule_ record{};
  unsigned int written = 0;
  buildRule(7)->toMessage(&record, sizeof record, &written);
  FWRule_ to{};
  std::size_t sum = 0;
  for (long i = 0; i < times; ++i) {
    if (mode == "copy") {
      std::memcpy(static_cast<void*>(&to), &record, sizeof to);
      asm volatile("" : : "r"(&to) : "memory");
    } else if (mode == "write") {
      buildRule(static_cast<unsigned int>(i))->toMessage(&to, sizeof to, &written);
    } else {
      sum += CTarnFWRuleFactory::newFromMsgBuf(&record)->toString().size();
    }
  }
  return sum == 1 ? 1 : 0;
}
