#include "TarnFWCreateCmd.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "TarnFWLog.h"

namespace TarnFirewall {

unsigned int CTarnFWCreateCmd::getMsgSize() const {
  const unsigned int entries = entriesSize();
  if (entries > std::numeric_limits<unsigned int>::max() - layout_.head) {
    throw CIntegerOverflowException("too many entries in a set", static_cast<int>(entries));
  }
  return layout_.head + entries;
}

bool CTarnFWCreateCmd::writeBody(void* body, unsigned int room, unsigned int* written, bool fresh) {
  const unsigned int size = getMsgSize();
  if (size > room) {
    refused(room);
    return false;
  }
  auto* bytes = static_cast<std::byte*>(body);
  const std::span<std::byte> head(bytes, layout_.head);
  std::memset(head.data(), 0, head.size());
  storeAt(head, layout_.flags, kRequestFlags);
  fillHead(head);
  unsigned int entries = 0;
  std::byte* const place = bytes + layout_.head;
  const unsigned int left = room - layout_.head;
  if (!(fresh ? writeFreshEntries(place, left, &entries) : writeEntries(place, left, &entries))) {
    return false;
  }
  *written = layout_.head + entries;
  return true;
}

bool CTarnFWCreateCmd::writeCmdBody(void* body, unsigned int room, unsigned int* written,
                                    unsigned int) {
  return writeBody(body, room, written, false);
}

bool CTarnFWCreateCmd::writeFreshBody(void* body, unsigned int room, unsigned int* written) {
  return writeBody(body, room, written, true);
}

void CTarnFWCreateCmd::checkCmdReply(const void* reply, unsigned int size) {
  const CTarnFWCmdReply view(reply, size);
  if ((view.byte(layout_.flags) & kRequestFlags) == kRequestFlags) {
    transaction_.fill(0);
    return;
  }
  const auto id = view.part(layout_.transaction, transaction_.size());
  std::memcpy(transaction_.data(), id.data(), transaction_.size());
  TARNFW_TRACE(FW_COMPONENT_CMD, 0, "transaction id: 0x%08x, 0x%08x, 0x%08x, 0x%08x\n",
               view.word(layout_.transaction), view.word(layout_.transaction + 4),
               view.word(layout_.transaction + 8), view.word(layout_.transaction + 12));
}

void CTarnFWCreateCmd::refused(unsigned int) const {}

}  // namespace TarnFirewall
