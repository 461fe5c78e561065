#include "TarnFWIDList.h"

#include "TarnFWText.h"

namespace TarnFirewall {

bool CTarnFWIDList::addID(std::uint32_t id) {
  add(id);
  return true;
}

void CTarnFWIDList::appendEntry(CTarnFWText& text, const std::uint32_t& id) const {
  appendText(text, "%d", static_cast<int>(id));
}

}  // namespace TarnFirewall
