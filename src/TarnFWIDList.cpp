#include "TarnFWIDList.h"

#include <cstddef>
#include <cstring>

#include "TarnFWException.h"
#include "TarnFWText.h"

namespace TarnFirewall {

bool CTarnFWIDList::addID(std::uint32_t id) {
  // Ids come in ascending order as a rule, so that the place is the end.
  ids_.insert(ids_.end(), id);
  return true;
}

unsigned int CTarnFWIDList::sizeOf(std::uint64_t count) {
  // The text speaks of connections although the ids are rules': scripts match it as it is.
  if (count >> 30 != 0) {
    throw CIntegerOverflowException("connection count overflows", static_cast<int>(count));
  }
  return static_cast<unsigned int>(count * sizeof(std::uint32_t));
}

int CTarnFWIDList::getType() const { return 130; }

std::string CTarnFWIDList::toString() const {
  std::string text = "{";
  for (const std::uint32_t id : ids_) {
    if (text.size() > 1) text += ',';
    appendText(text, "%d", static_cast<int>(id));
  }
  text += '}';
  return text;
}

bool CTarnFWIDList::toMessage(void* buffer, unsigned int room, unsigned int* written) {
  const unsigned int size = getMsgSize();
  if (size > room) return false;
  auto* to = static_cast<std::byte*>(buffer);
  for (const std::uint32_t id : ids_) {
    std::memcpy(to, &id, sizeof id);
    to += sizeof id;
  }
  *written = size;
  return true;
}

bool operator<(const CTarnFWIDList& left, const CTarnFWIDList& right) {
  const unsigned int leftSize = left.getMsgSize();
  const unsigned int rightSize = right.getMsgSize();
  if (leftSize == rightSize) throw CUnsupportedException("compare two connection list");
  return leftSize < rightSize;
}

}  // namespace TarnFirewall
