#include "TarnFWFixedCmd.h"

#include <algorithm>
#include <cstring>

namespace TarnFirewall {

bool CTarnFWBodyCmd::writeCmdBody(void* body, unsigned int room, unsigned int* written,
                                  unsigned int) {
  if (size_ > room) return false;
  std::memset(body, 0, size_);
  return writeFreshBody(body, room, written);
}

bool CTarnFWBodyCmd::writeFreshBody(void* body, unsigned int room, unsigned int* written) {
  if (size_ > room) return false;
  fill({static_cast<std::byte*>(body), size_});
  *written = size_;
  return true;
}

void CTarnFWBodyCmd::checkCmdReply(const void* reply, unsigned int size) {
  const CTarnFWCmdReply view(reply, std::min(size, size_));
  read(view);
  show(view);
}

void CTarnFWBodyCmd::fill(std::span<std::byte>) const {}

void CTarnFWBodyCmd::read(const CTarnFWCmdReply&) {}

void CTarnFWBodyCmd::show(const CTarnFWCmdReply&) const {}

unsigned int countedSize(unsigned int head, std::uint64_t each, unsigned int count,
                         const char* text) {
  const std::uint64_t size = head + each * count;
  if (size > std::numeric_limits<unsigned int>::max()) {
    throw CIntegerOverflowException(text, static_cast<int>(count));
  }
  return static_cast<unsigned int>(size);
}

}  // namespace TarnFirewall
