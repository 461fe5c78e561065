#include "TarnFWRuleText.h"

#include <cstddef>
#include <cstring>
#include <memory>
#include <string>

#include "TarnFWAddress.h"
#include "TarnFWAddressFactory.h"
#include "TarnFWCallFrame.h"
#include "TarnFWException.h"
#include "TarnFWLoadMemory.h"
#include "TarnFWRule.h"
#include "TarnFWRuleFactory.h"
#include "TarnFWText.h"

namespace TarnFirewall {

namespace {

/// Bytes that hold most rules with their parts.
constexpr std::size_t kRuleRoom = 1024;

/// Texts one after the other in a caller's buffer. At its end it closes them with a NUL, after the
/// last one that is whole.
class TextBuffer {
 public:
  TextBuffer(char* text, unsigned int size) : text_(text), size_(size) {}
  ~TextBuffer() { text_[used_] = '\0'; }
  TextBuffer(const TextBuffer&) = delete;
  TextBuffer& operator=(const TextBuffer&) = delete;

  /// Appends what the object prints, which is made where it will stand. Throws
  /// `CBufferTooSmallException` with the buffer's size.
  void append(const ITarnFWObject& object) {
    CTarnFWText more({text_ + used_, size_ - used_});
    object.appendTo(more);
    append(more.view());
  }
  void append(std::string_view more) {
    if (size_ - used_ < more.size() + 1) throw CBufferTooSmallException(static_cast<int>(size_));
    if (more.data() != text_ + used_) std::memcpy(text_ + used_, more.data(), more.size());
    used_ += more.size();
  }

 private:
  char* text_;
  std::size_t size_;
  std::size_t used_ = 0;
};

/// Fills a caller's buffer: `append` puts the text of one record into it.
template <typename Record, typename Append>
FWStatus_t recordsToText(const char* function, const Record* records, unsigned int count,
                         char* text, unsigned int size, const Append& append) {
  return callFrame(function, [&]() -> FWStatus_t {
    if (records == nullptr || count == 0 || text == nullptr || size == 0) {
      return FW_STATUS_INVALID_ARGUMENT;
    }
    TextBuffer buffer(text, size);
    for (unsigned int i = 0; i < count; ++i) {
      if (const FWStatus_t status = append(records + i, buffer)) return status;
    }
    return FW_STATUS_OK;
  });
}

}  // namespace

FWStatus_t rulesToText(const FWRule_* rules, unsigned int count, char* text, unsigned int size,
                       bool pretty) {
  return recordsToText("FW_GetRuleString", rules, count, text, size,
                       [&](const FWRule_* record, TextBuffer& buffer) -> FWStatus_t {
                         alignas(void*) std::byte room[kRuleRoom];
                         CTarnFWLoadMemory memory(room);
                         const std::unique_ptr<CTarnFWRule> rule =
                             CTarnFWRuleFactory::newFromMsgBuf(record, &memory);
                         if (rule == nullptr) return FW_STATUS_INVALID_RULE;
                         if (pretty) {
                           buffer.append(rule->toString2());
                         } else {
                           buffer.append(*rule);
                         }
                         return FW_STATUS_OK;
                       });
}

FWStatus_t addressesToText(const FWAddress_* addresses, unsigned int count, char* text,
                           unsigned int size) {
  return recordsToText("FW_GetAddressString", addresses, count, text, size,
                       [](const FWAddress_* record, TextBuffer& buffer) -> FWStatus_t {
                         buffer.append(*CTarnFWAddressFactory::newFromMsgBuf(record));
                         return FW_STATUS_OK;
                       });
}

}  // namespace TarnFirewall
