/// The flat functions that turn records into text.

#include "TarnFWRuleText.h"
#include "tarnfw.h"

using namespace TarnFirewall;

extern "C" {

FWStatus_t FW_GetRuleString(const FWRule_* rules, unsigned int count, char* text, unsigned int size,
                            unsigned int pretty) {
  return rulesToText(rules, count, text, size, pretty != 0);
}

FWStatus_t FW_GetAddressString(const FWAddress_* addresses, unsigned int count, char* text,
                               unsigned int size) {
  return addressesToText(addresses, count, text, size);
}

}  // extern "C"
