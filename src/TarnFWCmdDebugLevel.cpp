#include "TarnFWCmdDebugLevel.h"

#include "TarnFWException.h"
#include "TarnFWText.h"

namespace TarnFirewall {

FWDebugLevel debugLevel(unsigned int component, unsigned int level, bool known) {
  if (!known) throw CUnsupportedException("unsupported debug component");
  if (level > 15) throw CUnsupportedException("unsupported debug level");
  return {static_cast<std::uint8_t>(component), static_cast<std::uint8_t>(component >> 8),
          static_cast<std::uint8_t>(component >> 16), static_cast<std::uint8_t>(level)};
}

unsigned int debugComponent(const FWDebugLevel& body) {
  return body[0] | static_cast<unsigned int>(body[1]) << 8 |
         static_cast<unsigned int>(body[2]) << 16;
}

std::string debugStatement(const char* name, const FWDebugLevel& body) {
  return formatText("debug %s %d", name, body[3]);
}

}  // namespace TarnFirewall
