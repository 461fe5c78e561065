#include "TarnFWCmdReply.h"

#include "TarnFWLog.h"

namespace TarnFirewall {

void logCutRecords(std::uint32_t count, std::uint32_t size) {
  if (count > size) TARNFW_WARNING("reply tells %u entries, only %u can be read\n", count, size);
}

void CTarnFWCmdReply::refuse(std::size_t offset, std::size_t length) const {
  throw CInsufficientMsgBufException(static_cast<unsigned int>(offset + length),
                                     static_cast<unsigned int>(bytes_.size()));
}

}  // namespace TarnFirewall
