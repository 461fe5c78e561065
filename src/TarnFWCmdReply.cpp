#include "TarnFWCmdReply.h"

#include <algorithm>

#include "TarnFWLog.h"

namespace TarnFirewall {

std::uint32_t CTarnFWCmdReply::fitting(std::uint32_t count, std::uint32_t asked, std::size_t offset,
                                       std::size_t stride) const {
  const std::size_t room = offset < bytes_.size() ? bytes_.size() - offset : 0;
  const std::size_t most = std::min<std::size_t>(asked, room / stride);
  if (count <= most) return count;
  TARNFW_WARNING("reply tells %u entries, only %zu can be read\n", count, most);
  return static_cast<std::uint32_t>(most);
}

void CTarnFWCmdReply::refuse(std::size_t offset, std::size_t length) const {
  throw CInsufficientMsgBufException(static_cast<unsigned int>(offset + length),
                                     static_cast<unsigned int>(bytes_.size()));
}

}  // namespace TarnFirewall
