#include "TarnFWAddressConvert.h"

#include <bit>
#include <cstring>
#include <limits>

#include "TarnFWWire.h"

namespace {

using TarnFirewall::loadRecord;
using TarnFirewall::net32;
using TarnFirewall::net64;

constexpr unsigned int kWordBits = 32;

/// The highest `ones` bits set, 0 to 32.
constexpr std::uint32_t leadingOnes(unsigned int ones) {
  return ones == 0 ? 0 : ~std::uint32_t{0} << (kWordBits - ones);
}

/// Walks the aligned blocks of a range of unsigned numbers. `visit(block, prefix)` gets the prefix
/// as counted from the width of `Word`; its false result ends the walk.
template <typename Word, typename Visit>
bool walkBlocks(Word first, Word last, Visit visit) {
  constexpr unsigned int kBits = std::numeric_limits<Word>::digits;
  if (first > last) return true;
  Word current = first;
  for (;;) {
    unsigned int prefix = kBits;
    Word mask = 1;  // the low bits that the next larger block leaves free
    // A number without the mask's bits can't wrap around when the mask is added.
    while (prefix > 0 && (current & mask) == 0 && current + mask <= last) {
      --prefix;
      mask = static_cast<Word>((mask << 1) | 1);
    }
    if (!visit(current, prefix)) return false;
    if (prefix == 0) return true;
    const Word next = static_cast<Word>(current + (Word{1} << (kBits - prefix)));
    if (next < current || next > last) return true;
    current = next;
  }
}

}  // namespace

bool cidr2ipv6mask(unsigned int prefix, in6_addr* mask) {
  if (mask == nullptr || prefix > 4 * kWordBits) return false;
  net32 words[4];
  for (net32& word : words) {
    const unsigned int ones = prefix < kWordBits ? prefix : kWordBits;
    word = leadingOnes(ones);
    prefix -= ones;
  }
  static_assert(sizeof words == sizeof *mask);
  std::memcpy(mask, words, sizeof words);
  return true;
}

bool ipv4mask2cidr(in_addr mask, unsigned char* prefix) {
  const std::uint32_t bits = ntohl(mask.s_addr);
  const auto ones = static_cast<unsigned int>(std::countl_one(bits));
  *prefix = static_cast<unsigned char>(ones);
  return bits == leadingOnes(ones);
}

bool ipv6mask2cidr(const in6_addr& mask, unsigned char* prefix) {
  const auto* bytes = reinterpret_cast<const unsigned char*>(&mask);
  unsigned int ones = 0;
  bool ended = false;
  bool contiguous = true;
  for (unsigned int i = 0; i < 4; ++i) {
    const std::uint32_t bits = loadRecord<net32>(bytes + i * sizeof(net32));
    if (ended) {
      contiguous = contiguous && bits == 0;
      continue;
    }
    const auto here = static_cast<unsigned int>(std::countl_one(bits));
    ones += here;
    contiguous = bits == leadingOnes(here);
    ended = here < kWordBits;
  }
  *prefix = static_cast<unsigned char>(ones);
  return contiguous;
}

namespace TarnFirewall {

bool ipv4range2cidr(in_addr first, in_addr last, void* context, IPv4BlockCallback_t callback) {
  return walkBlocks<std::uint32_t>(
      ntohl(first.s_addr), ntohl(last.s_addr), [&](std::uint32_t block, unsigned int prefix) {
        return callback == nullptr || callback(context, in_addr{htonl(block)}, prefix);
      });
}

bool ipv6range2cidr(const in6_addr& first, const in6_addr& last, void* context,
                    IPv6BlockCallback_t callback) {
  constexpr std::size_t kHalf = 8;
  if (std::memcmp(&first, &last, kHalf) != 0) return false;
  const auto low = [](const in6_addr& address) -> std::uint64_t {
    return loadRecord<net64>(reinterpret_cast<const unsigned char*>(&address) + kHalf);
  };
  return walkBlocks<std::uint64_t>(
      low(first), low(last), [&](std::uint64_t block, unsigned int prefix) {
        if (callback == nullptr) return true;
        in6_addr address = first;
        storeRecord(reinterpret_cast<unsigned char*>(&address) + kHalf, net64(block));
        return callback(context, address, prefix + 64);
      });
}

FWAddrSetType_t addr_type_to_addrset_type(unsigned int type) {
  static constexpr FWAddrSetType_t kSetTypes[] = {FW_ADDRSET_IP, FW_ADDRSET_IP, FW_ADDRSET_IP,
                                                  FW_ADDRSET_IP, FW_ADDRSET_IP, FW_ADDRSET_IP,
                                                  FW_ADDRSET_MAC};
  if (type < 1 || type > std::size(kSetTypes)) return FW_ADDRSET_ANY;
  return kSetTypes[type - 1];
}

}  // namespace TarnFirewall
