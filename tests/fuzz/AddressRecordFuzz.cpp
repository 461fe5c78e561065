// An address record of the kernel: refused by exception, or written and read again as what it was.

#include <vector>

#include "Fuzz.h"
#include "TarnFWAddressFactory.h"
#include "TarnFWException.h"

using namespace TarnFirewall;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    unsigned int used = 1;
    const auto address =
        CTarnFWAddressFactory::newFromMsgBuf(data, static_cast<unsigned int>(size), &used);
    require((address == nullptr) == (size < sizeof(FWAddress_)));
    require(used == (address == nullptr ? 0 : sizeof(FWAddress_)));
    if (address == nullptr) return 0;
    require(!address->toString().empty());
    FWAddress_ written{};
    unsigned int length = 0;
    require(address->toMessage(&written, sizeof written, &length) && length == sizeof written);
    const auto again = CTarnFWAddressFactory::newFromMsgBuf(&written);
    require(again->getType() == address->getType());
    require(again->isNegated() == address->isNegated());
    FWAddress_ second{};
    require(again->toMessage(&second, sizeof second, &length));
    require(std::memcmp(&written, &second, sizeof written) == 0);
  } catch (const CInvalidAddressException&) {
  } catch (const CInvalidIPv4RangeException&) {
  } catch (const CInvalidIPv6RangeException&) {
  }
  return 0;
}
