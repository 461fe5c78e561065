#include "TarnFWMsgBufFactory.h"

#include "TarnFWException.h"
#include "TarnFWSimpleMsgBuf.h"

namespace TarnFirewall {

std::unique_ptr<CTarnFWMsgBuf> CTarnFWMsgBufFactory::newMsgBuf(FWMsgBufType_t type) {
  if (type != FW_MSGBUF_SIMPLE) throw CUnknownMsgBufTypeException(static_cast<int>(type));
  return std::make_unique<CTarnFWSimpleMsgBuf>();
}

}  // namespace TarnFirewall
