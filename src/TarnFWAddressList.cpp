#include "TarnFWAddressList.h"

#include <limits>

#include "TarnFWAddressFactory.h"
#include "TarnFWAddressIPv4CIDR.h"
#include "TarnFWException.h"
#include "TarnFWLog.h"

namespace TarnFirewall {

namespace {

/// What log lines about an address that is added name as their function.
constexpr char kAddAddress[] = "addAddress";

}  // namespace

CTarnFWAddressList::CTarnFWAddressList(bool borrowed) : id_{}, borrowed_(borrowed) {}

CTarnFWAddressList::CTarnFWAddressList(const FWAddrSetID_t& id, bool negated, bool borrowed)
    : CTarnFWAddress(negated), id_(id), borrowed_(borrowed) {}

CTarnFWAddressList::CTarnFWAddressList(CTarnFWLoadMemory& memory)
    : memory_(&memory), id_{}, borrowed_(false) {}

CTarnFWAddressList::~CTarnFWAddressList() {
  if (!borrowed_) return;
  auto own = owned_.begin();
  for (Member& member : addresses_) {
    if (own != owned_.end() && *own == member.get()) {
      ++own;
    } else {
      static_cast<void>(member.release());
    }
  }
}

CTarnFWAddressList::CTarnFWAddressList(const FWAddrSetID_t& id, const FWAddress_* records,
                                       unsigned int count, bool (*belongs)(int type))
    : id_(id), borrowed_(false) {
  const auto* place = reinterpret_cast<const std::uint8_t*>(records);
  for (unsigned int i = 0; i < count; ++i) {
    unsigned int used = 0;
    auto address = CTarnFWAddressFactory::newFromMsgBuf(place, sizeof(FWAddress_), &used);
    if (!belongs(address->getType())) throw CInvalidAddressException(address->toString());
    addresses_.push_back(std::move(address));
    place += used;
  }
  count_ = count;
}

bool CTarnFWAddressList::accepts(int type) const {
  switch (setType_) {
    case FW_ADDRSET_IP:
      if (type >= FW_ADDRESS_IPV4 && type <= FW_ADDRESS_IPV6_CIDR) return true;
      TARNFW_LOG_IN(kAddAddress, LOG_WARNING,
                    "cannot add non-IP address of type %d into an IP set\n", type);
      return false;
    case FW_ADDRSET_MAC:
      if (type >= FW_ADDRESS_ETHER && type <= FW_ADDRESS_ETHER_MASK) return true;
      TARNFW_LOG_IN(kAddAddress, LOG_WARNING,
                    "cannot add non-MAC address of type %d into a MAC set\n", type);
      return false;
    case FW_ADDRSET_ANY:
      // Attributes of unsigned value are left out: scripts rely on the refusal.
      if ((type >= FW_ADDRESS_ANY && type <= FW_ADDRESS_ETHER_MASK) ||
          type == FW_ADDRESS_ATTR_INT || type == FW_ADDRESS_ATTR_STRING ||
          type == FW_ADDRESS_ATTR_SID) {
        return true;
      }
      TARNFW_LOG_IN(kAddAddress, LOG_WARNING, "cannot add address of unsupported type %d\n", type);
      return false;
    default:
      return true;
  }
}

void CTarnFWAddressList::keep(std::unique_ptr<CTarnFWAddress> address) {
  if (borrowed_) owned_.push_back(address.get());
  addresses_.push_back(std::move(address));
  ++count_;
}

CTarnFWAddressList::Taken CTarnFWAddressList::add(const CTarnFWAddress* address) {
  if (address == nullptr) return Taken::no;
  const int type = address->getType();
  if (!accepts(type)) return Taken::no;
  if ((setType_ == FW_ADDRSET_IP || setType_ == FW_ADDRSET_ANY) &&
      (type == FW_ADDRESS_IPV6 || type == FW_ADDRESS_IPV6_RANGE || type == FW_ADDRESS_IPV6_CIDR)) {
    hasIPv6_ = true;
  }
  if (type == FW_ADDRESS_IPV4_CIDR) {
    in_addr base;
    unsigned char prefix = 0;
    static_cast<const CTarnFWAddressIPv4CIDR*>(address)->getAddress(&base, &prefix);
    if (prefix == 0) {
      TARNFW_LOG_IN(kAddAddress, LOG_WARNING, "handling 0 prefix ip cidr\n");
      for (const char* const half : {"0.0.0.0/1", "128.0.0.0/1"}) {
        keep(make<CTarnFWAddressIPv4CIDR>(half, false));
      }
      return Taken::replaced;
    }
  }
  if (!isFull()) return Taken::yes;
  count();
  return Taken::counted;
}

bool CTarnFWAddressList::addAddress(CTarnFWAddress* address) {
  const Taken taken = add(address);
  if (taken == Taken::yes) {
    addresses_.emplace_back().reset(address);
    ++count_;
  }
  return taken != Taken::no;
}

bool CTarnFWAddressList::addAddress(std::unique_ptr<CTarnFWAddress> address) {
  const Taken taken = add(address.get());
  if (taken == Taken::yes) keep(std::move(address));
  return taken != Taken::no;
}

void CTarnFWAddressList::addBlocks(std::unique_ptr<CTarnFWAddressBlocks> blocks) {
  const std::size_t count = count_ + blocks->getCount();
  if (blocks->areIPv6()) hasIPv6_ = true;
  if (!isFull()) keep(std::move(blocks));
  count_ = count;
}

std::vector<std::unique_ptr<CTarnFWAddress>> CTarnFWAddressList::takeAddresses() {
  static_cast<void>(getMsgSize());
  const bool hasBlocks = std::exchange(count_, 0) != addresses_.size();
  std::vector<Member> members = std::exchange(addresses_, {});
  if (!hasBlocks) return members;
  std::vector<Member> all;
  for (Member& member : members) {
    if (member->getType() == FW_ADDRESS_LIST) {
      for (Member& block : static_cast<CTarnFWAddressBlocks&>(*member).makeAddresses()) {
        all.push_back(std::move(block));
      }
    } else {
      all.push_back(std::move(member));
    }
  }
  return all;
}

int CTarnFWAddressList::getType() const { return FW_ADDRESS_LIST; }

unsigned int CTarnFWAddressList::getMsgSize() const { return getMsgSize(count_); }

unsigned int CTarnFWAddressList::getMsgSize(std::size_t count) {
  if (!itemsFit(count, sizeof(FWAddress_), std::numeric_limits<unsigned int>::max())) {
    throw CIntegerOverflowException("too many addresses", static_cast<int>(count));
  }
  return static_cast<unsigned int>(count * sizeof(FWAddress_));
}

std::string CTarnFWAddressList::toString() const {
  CTarnFWText text;
  appendTo(text);
  return text.str();
}

void CTarnFWAddressList::appendTo(CTarnFWText& text) const {
  text += '{';
  text += std::string_view(id_.text, fieldLength(id_.text, sizeof id_.text));
  const char* separator = "";
  for (const Member& member : addresses_) {
    text += separator;
    member->appendTo(text);
    separator = ", ";
  }
  text += '}';
}

bool CTarnFWAddressList::toMessage(void* buffer, unsigned int size, unsigned int* written) {
  if (getMsgSize() > size) return false;
  auto* const bytes = static_cast<std::uint8_t*>(buffer);
  *written = 0;
  for (const Member& member : addresses_) {
    unsigned int one = 0;
    if (!member->toMessage(bytes + *written, size - *written, &one)) return false;
    *written += one;
  }
  return true;
}

bool CTarnFWAddressList::operator<(const CTarnFWAddress& other) const {
  if (getType() != other.getType()) return getType() < other.getType();
  throw CInvalidAddressException("compare address two sets");
}

}  // namespace TarnFirewall
