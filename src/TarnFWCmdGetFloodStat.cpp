#include "TarnFWCmdGetFloodStat.h"

namespace TarnFirewall {

FWFloodStat_ CTarnFWCmdGetFloodStat::stat(const CTarnFWCmdReply& reply) {
  FWFloodStat_ stat = answer(reply);
  stat.rowCount = reply.records<FWFloodRow_>(136, stat.rowCount, kFloodRows).checkedSize();
  return stat;
}

}  // namespace TarnFirewall
