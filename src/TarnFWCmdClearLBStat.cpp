#include "TarnFWCmdClearLBStat.h"

#include "TarnFWCmdJson.h"

namespace TarnFirewall {

namespace {

#define SENTENCE(what)                                                                             \
  what " stats on datapath is cleared. In rare cases some of the counters may not be cleared and " \
       "when "                                                                                     \
       "that happens please try issuing the command again"

constexpr const char* kVirtualServersCleared = SENTENCE("vs");
constexpr const char* kPoolsCleared = SENTENCE("pool");

#undef SENTENCE

}  // namespace

void CTarnFWCmdClearLBStat::print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const {
  const std::uint8_t flags = answer(reply).flags;
  CTarnFWJson json(out);
  if ((flags & kLBStatVirtualServers) != 0) {
    json.text("result", kVirtualServersCleared);
  } else if ((flags & kLBStatPools) != 0) {
    json.text("result", kPoolsCleared);
  }
  json.end();
}

}  // namespace TarnFirewall
