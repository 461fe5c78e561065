// The text of an address: refused by exception, or an address whose text is read back as itself.
// The first byte chooses the kind of set.

#include <string>

#include "Fuzz.h"
#include "TarnFWAddressFactory.h"
#include "TarnFWException.h"

using namespace TarnFirewall;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const auto kind = static_cast<FWAddrSetType_t>(data[0] % 8);
  const std::string text(reinterpret_cast<const char*>(data) + 1, size - 1);
  try {
    const auto address = CTarnFWAddressFactory::newFromString(kind, text.c_str());
    require(address != nullptr);
    const std::string printed = address->toString();
    if (kind == FW_ADDRSET_SID) return 0;  // such an address carries no value of its own
    const std::size_t word = printed.find(' ');
    require(word != std::string::npos);
    const auto again = CTarnFWAddressFactory::newFromString(kind, printed.c_str() + word + 1);
    require(again->toString() == printed);
  } catch (const CInvalidAddressException&) {
  } catch (const CIDTooLongException&) {
  } catch (const CUnsupportedException&) {
    require(kind != FW_ADDRSET_IP && kind != FW_ADDRSET_MAC && kind != FW_ADDRSET_SID);
  }
  return 0;
}
