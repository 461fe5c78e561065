#include "TarnFWProtocolSpecFactory.h"

#include <string_view>

#include "TarnFWException.h"
#include "TarnFWProtocolSpecICMPType.h"
#include "TarnFWProtocolSpecL4Port.h"
#include "TarnFWProtocolSpecL4PortRange.h"
#include "TarnFWProtocolSpecL4PortSet.h"
#include "TarnFWProtocolSpecTCPFlags.h"
#include "TarnFWProtocolSpecTCPOptions.h"

namespace TarnFirewall {

namespace {

template <typename Spec>
std::unique_ptr<CTarnFWProtocolSpec> readSpec(FWSpecHeader_ header, const std::uint8_t* body,
                                              unsigned int size, CTarnFWLoadMemory* memory) {
  using Body = typename Spec::Body;
  if (size < sizeof(Body)) throw CInsufficientMsgBufException(sizeof(Body), size);
  return makeIn<Spec>(memory, header.dir(), loadRecord<Body>(body), header.negated());
}

}  // namespace

std::unique_ptr<CTarnFWProtocolSpec> CTarnFWProtocolSpecFactory::newFromMsgBuf(
    const void* buffer, unsigned int size, CTarnFWLoadMemory* memory) {
  if (size < sizeof(FWSpecHeader_)) return nullptr;
  const auto header = loadRecord<FWSpecHeader_>(buffer);
  const std::uint8_t* const body = static_cast<const std::uint8_t*>(buffer) + sizeof header;
  const unsigned int rest = size - static_cast<unsigned int>(sizeof header);
  switch (header.kind()) {
    case FW_SPEC_NONE:
      return nullptr;
    case FW_SPEC_L4_PORT:
      return readSpec<CTarnFWProtocolSpecL4Port>(header, body, rest, memory);
    case FW_SPEC_L4_PORT_RANGE:
      return readSpec<CTarnFWProtocolSpecL4PortRange>(header, body, rest, memory);
    case FW_SPEC_L4_PORT_SET:
      return readSpec<CTarnFWProtocolSpecL4PortSet>(header, body, rest, memory);
    case FW_SPEC_TCP_FLAGS:
      return readSpec<CTarnFWProtocolSpecTCPFlags>(header, body, rest, memory);
    case FW_SPEC_TCP_OPTIONS:
      return readSpec<CTarnFWProtocolSpecTCPOptions>(header, body, rest, memory);
    case FW_SPEC_ICMP_TYPE:
      return readSpec<CTarnFWProtocolSpecICMPType>(header, body, rest, memory);
    default:
      throw CUnknownProtocolSpecTypeException(static_cast<int>(header.kind()));
  }
}

std::unique_ptr<CTarnFWProtocolSpec> CTarnFWProtocolSpecFactory::newL4PortSpecFromString(
    unsigned char dir, const char* text) {
  const std::string_view view = text != nullptr ? text : "";
  // "80-90,100" has a "-", so that it is a range here and refused as one, with the text of a range:
  // scripts match it.
  if (view.find_first_of("-:") != view.npos)
    return std::make_unique<CTarnFWProtocolSpecL4PortRange>(dir, text);
  if (view.find(',') != view.npos) return std::make_unique<CTarnFWProtocolSpecL4PortSet>(dir, text);
  return std::make_unique<CTarnFWProtocolSpecL4Port>(dir, text);
}

}  // namespace TarnFirewall
