#include "TarnFWProtocolSpecL4Port.h"

#include "TarnFWException.h"
#include "TarnFWText.h"
#include "TarnFWUtil.h"

namespace TarnFirewall {

namespace {

unsigned short portFromText(const char* text) {
  long port = 0;
  if (!Str2Port(text, &port)) throw CInvalidL4PortException(text != nullptr ? text : "");
  return static_cast<unsigned short>(port);
}

}  // namespace

CTarnFWProtocolSpecL4Port::CTarnFWProtocolSpecL4Port(unsigned char dir, const char* text)
    : CTarnFWProtocolSpec(dir, false), port_(portFromText(text)) {}

void CTarnFWProtocolSpecL4Port::appendTo(CTarnFWText& text) const {
  if (isNegated()) text += "not ";
  text += "port ";
  text.appendDecimal(port_);
}

bool CTarnFWProtocolSpecL4Port::toMessage(void* buffer, unsigned int size, unsigned int* written) {
  return writeBody(Body{port_}, buffer, size, written);
}

}  // namespace TarnFirewall
