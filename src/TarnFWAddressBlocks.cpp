#include "TarnFWAddressBlocks.h"

#include "TarnFWAddressConvert.h"
#include "TarnFWException.h"

namespace TarnFirewall {

namespace {

/// Calls `each` with the first address and the prefix length of each block of a range.
template <typename Each>
bool walk(const in_addr& first, const in_addr& last, Each each) {
  return ipv4range2cidr(first, last, &each, [](void* call, in_addr block, unsigned int prefix) {
    (*static_cast<Each*>(call))(block, static_cast<unsigned char>(prefix));
    return true;
  });
}
template <typename Each>
bool walk(const in6_addr& first, const in6_addr& last, Each each) {
  return ipv6range2cidr(first, last, &each, [](void* call, in6_addr block, unsigned int prefix) {
    (*static_cast<Each*>(call))(block, static_cast<unsigned char>(prefix));
    return true;
  });
}

}  // namespace

unsigned int CTarnFWAddressBlocks::getMsgSize() const {
  return count_ * static_cast<unsigned int>(sizeof(FWAddress_));
}

int CTarnFWAddressBlocks::getType() const { return FW_ADDRESS_LIST; }

std::string CTarnFWAddressBlocks::toString() const {
  CTarnFWText text;
  appendTo(text);
  return text.str();
}

void CTarnFWAddressBlocks::appendTo(CTarnFWText& text) const {
  struct {
    CTarnFWText& text;
    const char* separator;
  } output = {text, ""};
  visitBlocks(
      [](void* context, CTarnFWAddress& block) {
        auto& out = *static_cast<decltype(output)*>(context);
        out.text += out.separator;
        block.appendTo(out.text);
        out.separator = ", ";
      },
      &output);
}

bool CTarnFWAddressBlocks::toMessage(void* buffer, unsigned int size, unsigned int* written) {
  if (getMsgSize() > size) return false;
  auto* place = static_cast<std::uint8_t*>(buffer);
  visitBlocks(
      [](void* context, CTarnFWAddress& block) {
        auto& to = *static_cast<std::uint8_t**>(context);
        block.toMessage(to, sizeof(FWAddress_), nullptr);
        to += sizeof(FWAddress_);
      },
      &place);
  if (written != nullptr) *written = getMsgSize();
  return true;
}

bool CTarnFWAddressBlocks::operator<(const CTarnFWAddress& other) const {
  if (getType() != other.getType()) return getType() < other.getType();
  throw CInvalidAddressException("compare address two sets");
}

template <typename Family, typename Single, typename CIDR>
bool CTarnFWAddressBlocksOf<Family, Single, CIDR>::countOf(const Address& first,
                                                           const Address& last,
                                                           unsigned int* count) {
  *count = 0;
  return walk(first, last, [count](const Address&, unsigned char) { ++*count; });
}

template <typename Family, typename Single, typename CIDR>
std::vector<std::unique_ptr<CTarnFWAddress>>
CTarnFWAddressBlocksOf<Family, Single, CIDR>::makeAddresses() const {
  std::vector<std::unique_ptr<CTarnFWAddress>> addresses;
  walk(first_, last_, [&](const Address& block, unsigned char prefix) {
    if (prefix == Family::maxPrefix) {
      addresses.push_back(std::make_unique<Single>(block, false));
    } else {
      addresses.push_back(std::make_unique<CIDR>(block, prefix, false));
    }
  });
  return addresses;
}

template <typename Family, typename Single, typename CIDR>
void CTarnFWAddressBlocksOf<Family, Single, CIDR>::visitBlocks(Visit visit, void* context) const {
  walk(first_, last_, [&](const Address& block, unsigned char prefix) {
    if (prefix == Family::maxPrefix) {
      Single address(block, false);
      visit(context, address);
    } else {
      CIDR address(block, prefix, false);
      visit(context, address);
    }
  });
}

template class CTarnFWAddressBlocksOf<IPv4Family, CTarnFWAddressIPv4, CTarnFWAddressIPv4CIDR>;
template class CTarnFWAddressBlocksOf<IPv6Family, CTarnFWAddressIPv6, CTarnFWAddressIPv6CIDR>;

}  // namespace TarnFirewall
