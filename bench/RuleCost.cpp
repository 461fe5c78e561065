// rule_cost COUNT: does each of the following COUNT times. rule-cost counts the instructions inside
// each of these functions, by name, from outside.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "RuleParts.h"

using namespace TarnFirewall;

extern "C" {

__attribute__((noinline)) void copyRecord(FWRule_* to, const FWRule_* from) {
  std::memcpy(static_cast<void*>(to), from, sizeof *to);
  asm volatile("" : : "r"(to) : "memory");
}

__attribute__((noinline)) void buildAndWrite(std::unique_ptr<CTarnFWRule>* rule, FWRule_* record,
                                             unsigned int id) {
  unsigned int written = 0;
  *rule = buildRule(id);
  (*rule)->toMessage(record, sizeof *record, &written);
}

__attribute__((noinline)) void readAndPrint(std::unique_ptr<CTarnFWRule>* rule,
                                            const FWRule_* record, std::string* text) {
  *rule = CTarnFWRuleFactory::newFromMsgBuf(record);
  *text = (*rule)->toString();
}

__attribute__((noinline)) void buildWriteAndDestroy(FWRule_* record, unsigned int id) {
  unsigned int written = 0;
  buildRule(id)->toMessage(record, sizeof *record, &written);
}

__attribute__((noinline)) void readPrintAndDestroy(const FWRule_* record, std::string* text) {
  *text = CTarnFWRuleFactory::newFromMsgBuf(record)->toString();
}

}  // extern "C"

int main(int count, char** arguments) {
  const long times = count == 2 ? std::strtol(arguments[1], nullptr, 10) : 0;
  if (times <= 0) {
    std::fprintf(stderr, "usage: rule_cost COUNT\n");
    return 2;
  }
  FWRule_ record{};
  FWRule_ copy{};
  std::string text;
  // Kept first, while the heap is new: nothing has been given back to it.
  std::vector<std::unique_ptr<CTarnFWRule>> kept(static_cast<std::size_t>(times) * 2);
  for (std::size_t i = 0; i < kept.size(); i += 2) {
    buildAndWrite(&kept[i], &record, static_cast<unsigned int>(i));
    readAndPrint(&kept[i + 1], &record, &text);
  }
  for (long i = 0; i < times; ++i) {
    buildWriteAndDestroy(&record, static_cast<unsigned int>(i));
    readPrintAndDestroy(&record, &text);
    copyRecord(&copy, &record);
  }
  return text.empty() ? 1 : 0;
}
