#include "AddressBlocks.h"

#include <algorithm>
#include <tuple>

using namespace TarnFirewall;

namespace {

AddressBits bitsOf(const std::uint8_t* bytes, std::size_t size) {
  if (size == sizeof(net32)) return std::uint32_t{loadRecord<net32>(bytes)};
  return AddressBits{std::uint64_t{loadRecord<net64>(bytes)}} << 64 |
         std::uint64_t{loadRecord<net64>(bytes + sizeof(net64))};
}

/// Ones in the low bits.
AddressBits ones(unsigned int count) {
  return count == 128 ? ~AddressBits{0} : (AddressBits{1} << count) - 1;
}

AddressBlock blockAt(bool isIPv4, AddressBits bits, unsigned int length) {
  AddressBlock block{isIPv4, static_cast<std::uint8_t>(length), bits};
  return block.cutTo(block.length);
}

/// The largest blocks from `first` to `last`.
void addRange(bool isIPv4, AddressBits first, AddressBits last, std::vector<AddressBlock>& blocks) {
  const unsigned int width = isIPv4 ? 32 : 128;
  for (;;) {
    unsigned int free = 0;  // low bits that the block may have
    while (free < width && (first & ones(free + 1)) == 0 && first + ones(free + 1) <= last &&
           first + ones(free + 1) >= first) {
      ++free;
    }
    blocks.push_back(blockAt(isIPv4, first, width - free));
    const AddressBits end = first + ones(free);
    if (end == last) return;
    first = end + 1;
  }
}

bool precedes(const AddressBlock& a, const AddressBlock& b) {
  return std::tuple(!a.isIPv4, a.bits, a.length) < std::tuple(!b.isIPv4, b.bits, b.length);
}

}  // namespace

AddressBits AddressBlock::last() const { return bits | ones(width() - length); }

AddressBlock AddressBlock::cutTo(std::uint8_t prefix) const {
  return {isIPv4, prefix, bits & ~ones(width() - prefix) & ones(width())};
}

bool AddressBlock::contains(const AddressBlock& other) const {
  return isIPv4 == other.isIPv4 && length <= other.length && other.cutTo(length).bits == bits;
}

std::size_t AddressBlockHash::operator()(const AddressBlock& block) const {
  auto hash = static_cast<std::uint64_t>(block.bits >> 64) * 0x9e3779b97f4a7c15u;
  hash ^= static_cast<std::uint64_t>(block.bits);
  hash ^= static_cast<std::uint64_t>(block.length) << 56 | std::uint64_t{block.isIPv4} << 55;
  hash = (hash ^ hash >> 32) * 0xd6e8feb86659fd93u;
  return static_cast<std::size_t>(hash ^ hash >> 32);
}

std::optional<AddressBlock> blockOf(const FWAddress_& record) {
  const std::uint8_t* const value = record.value;
  switch (record.type) {
    case FW_ADDRESS_IPV4:
      return blockAt(true, bitsOf(value, 4), 32);
    case FW_ADDRESS_IPV6:
      return blockAt(false, bitsOf(value, 16), 128);
    case FW_ADDRESS_IPV4_CIDR:
      return blockAt(true, bitsOf(value, 4), std::min<unsigned int>(value[4], 32));
    case FW_ADDRESS_IPV6_CIDR:
      return blockAt(false, bitsOf(value, 16), std::min<unsigned int>(value[16], 128));
    default:
      return std::nullopt;
  }
}

void addBlocksOf(const FWAddress_& record, std::vector<AddressBlock>& blocks) {
  const bool isIPv4 = record.type == FW_ADDRESS_IPV4_RANGE;
  if (!isIPv4 && record.type != FW_ADDRESS_IPV6_RANGE) return;
  const std::size_t size = isIPv4 ? 4 : 16;
  const AddressBits first = bitsOf(record.value, size);
  const AddressBits last = bitsOf(record.value + size, size);
  if (first <= last) addRange(isIPv4, first, last, blocks);
}

std::vector<AddressBlock> merged(std::vector<AddressBlock> blocks) {
  std::sort(blocks.begin(), blocks.end(), precedes);
  std::vector<AddressBlock> result;
  for (std::size_t i = 0; i < blocks.size();) {
    const bool isIPv4 = blocks[i].isIPv4;
    const AddressBits first = blocks[i].bits;
    AddressBits last = blocks[i].last();
    std::size_t next = i + 1;
    while (next < blocks.size() && blocks[next].isIPv4 == isIPv4 &&
           (blocks[next].bits <= last || blocks[next].bits - last == 1)) {
      last = std::max(last, blocks[next++].last());
    }
    if (next == i + 1) {
      result.push_back(blocks[i]);
    } else {
      addRange(isIPv4, first, last, result);
    }
    i = next;
  }
  return result;
}

std::optional<AddressBlock> hullOf(const std::vector<AddressBlock>& blocks) {
  if (blocks.empty()) return std::nullopt;
  AddressBlock hull = blocks.front();
  for (const AddressBlock& block : blocks) {
    if (block.isIPv4 != hull.isIPv4) return std::nullopt;
    while (!hull.contains(block)) hull = hull.cutTo(static_cast<std::uint8_t>(hull.length - 1));
  }
  return hull;
}

bool holds(const std::vector<AddressBlock>& blocks, const AddressBlock& block) {
  auto next = std::upper_bound(blocks.begin(), blocks.end(), block, precedes);
  return next != blocks.begin() && std::prev(next)->contains(block);
}
