// A container's chain as the kernel sends it: refused, or read, printed, written and read again
// with the same elements. A profile and a plain container read alike.

#include <vector>

#include "Fuzz.h"
#include "TarnFWContainer.h"

using namespace TarnFirewall;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto* const chain = reinterpret_cast<const FWtlvChain*>(data);
  const auto length = static_cast<unsigned int>(size);
  const auto plain = CTarnFWContainer::BuildContainer("plain", FW_CONTAINER_ADDRSET, chain, length);
  const auto profile =
      CTarnFWContainer::BuildContainer("profile", FW_CONTAINER_ATTR_PROFILE, chain, length);
  require((plain == nullptr) == (profile == nullptr));
  if (plain == nullptr) return 0;
  require(plain->getCount() == profile->getCount());
  require(!plain->toString().empty() && !profile->toString().empty());
  std::vector<std::uint8_t> bytes(plain->getMsgSize());
  const auto needed = static_cast<unsigned int>(bytes.size());
  unsigned int written = 0;
  require(plain->toMessage(bytes.data(), needed, &written) && written == needed);
  const auto again = CTarnFWContainer::BuildContainer(
      "again", FW_CONTAINER_ADDRSET, reinterpret_cast<const FWtlvChain*>(bytes.data()), needed);
  require(again != nullptr && again->getCount() == plain->getCount());
  return 0;
}
