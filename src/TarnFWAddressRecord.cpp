#include "TarnFWAddressRecord.h"

namespace TarnFirewall {

std::string CTarnFWAddressRecord::toString() const {
  CTarnFWText text;
  appendTo(text);
  return text.str();
}

void CTarnFWAddressRecord::appendTo(CTarnFWText& text) const {
  if (negated_) text += "not ";
  appendValue(text);
}

bool CTarnFWAddressRecord::toMessage(void* buffer, unsigned int size, unsigned int* written) {
  if (getMsgSize() > size) return false;
  auto* const bytes = static_cast<std::uint8_t*>(buffer);
  storeRecord(bytes, host16(static_cast<std::uint16_t>(getType())));
  std::uint8_t& flags = bytes[offsetof(FWAddress_, flags)];
  flags = static_cast<std::uint8_t>((flags & ~kAddressNegated) | (negated_ ? kAddressNegated : 0));
  storeValue(ValueArea(bytes + offsetof(FWAddress_, value), ValueArea::extent));
  if (written != nullptr) *written = getMsgSize();
  return true;
}

bool CTarnFWAddressRecord::operator<(const CTarnFWAddress& other) const {
  if (getType() != other.getType()) return getType() < other.getType();
  if (negated_ != other.isNegated()) return !negated_;
  return valueLess(other);
}

}  // namespace TarnFirewall
