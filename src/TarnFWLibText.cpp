#include <cstring>
#include <string>

#include "TarnFWAddress.h"
#include "TarnFWAddressFactory.h"
#include "TarnFWException.h"
#include "TarnFWLibCall.h"
#include "TarnFWRule.h"
#include "TarnFWRuleFactory.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

/// Texts one behind the other in a caller's buffer, always closed with a NUL.
class TextBuffer {
 public:
  TextBuffer(char* text, unsigned int size) : text_(text), size_(size) { *text_ = '\0'; }

  /// Throws `CBufferTooSmallException` with the buffer's size.
  void append(const std::string& more) {
    if (size_ - used_ < more.size() + 1) throw CBufferTooSmallException(static_cast<int>(size_));
    std::memcpy(text_ + used_, more.data(), more.size());
    used_ += more.size();
    text_[used_] = '\0';
  }

 private:
  char* text_;
  std::size_t size_;
  std::size_t used_ = 0;
};

}  // namespace

extern "C" {

FWStatus_t FW_GetRuleString(const FWRule_* rules, unsigned int count, char* text, unsigned int size,
                            unsigned int pretty) {
  return callFrame(__func__, [&]() -> FWStatus_t {
    if (rules == nullptr || count == 0 || text == nullptr || size == 0) {
      return FW_STATUS_INVALID_ARGUMENT;
    }
    TextBuffer buffer(text, size);
    for (unsigned int i = 0; i < count; ++i) {
      const std::unique_ptr<CTarnFWRule> rule = CTarnFWRuleFactory::newFromMsgBuf(rules + i);
      if (rule == nullptr) return FW_STATUS_INVALID_RULE;
      buffer.append(pretty != 0 ? rule->toString2() : rule->toString());
    }
    return FW_STATUS_OK;
  });
}

FWStatus_t FW_GetAddressString(const FWAddress_* addresses, unsigned int count, char* text,
                               unsigned int size) {
  return callFrame(__func__, [&]() -> FWStatus_t {
    if (addresses == nullptr || count == 0 || text == nullptr || size == 0) {
      return FW_STATUS_INVALID_ARGUMENT;
    }
    TextBuffer buffer(text, size);
    for (unsigned int i = 0; i < count; ++i) {
      buffer.append(CTarnFWAddressFactory::newFromMsgBuf(addresses + i)->toString());
    }
    return FW_STATUS_OK;
  });
}

}  // extern "C"
