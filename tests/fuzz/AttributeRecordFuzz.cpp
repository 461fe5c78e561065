// An attribute record of the kernel: refused by exception, or equal to itself when written and read
// again.

#include <vector>

#include "Fuzz.h"
#include "TarnFWException.h"
#include "TarnFWL7Attribute.h"

using namespace TarnFirewall;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const CTarnFWL7Attribute read(reinterpret_cast<const _FWAttrValue*>(data),
                                  static_cast<unsigned int>(size));
    require(!read.toString().empty());
    std::vector<std::uint8_t> bytes(read.getTlvLength());
    const auto length = static_cast<unsigned int>(bytes.size());
    unsigned int written = 0;
    require(read.serializeValue(bytes.data(), length, &written) && written == length);
    const CTarnFWL7Attribute again(reinterpret_cast<const _FWAttrValue*>(bytes.data()), length);
    require(again == read && !(again < read) && !(read < again));
  } catch (const CInvalidAttrKey&) {
  } catch (const CInvalidAttrValue&) {
  }
  return 0;
}
