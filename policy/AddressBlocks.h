#pragma once

/// IP addresses as numbers: blocks of a prefix, and what several of them cover together.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "TarnFWRecords.h"

/// A number of 128 bits.
__extension__ using AddressBits = unsigned __int128;

/// The addresses of a prefix. An IPv4 address stands in the low 32 bits.
struct AddressBlock {
  bool isIPv4 = true;
  std::uint8_t length = 0;  // of the prefix: at most 32 or 128
  AddressBits bits = 0;     // zero after the prefix

  unsigned int width() const { return isIPv4 ? 32 : 128; }
  AddressBits last() const;

  /// The block of a shorter prefix that holds this one.
  AddressBlock cutTo(std::uint8_t prefix) const;
  bool contains(const AddressBlock& other) const;
  bool operator==(const AddressBlock&) const = default;
};

/// For tables of blocks.
struct AddressBlockHash {
  std::size_t operator()(const AddressBlock& block) const;
};

/// The block of a record that is an address or a block of IP addresses; nothing for other records.
std::optional<AddressBlock> blockOf(const TarnFirewall::FWAddress_& record);

/// Adds the blocks that cover the range of a record, or nothing when it is no rising IP range.
void addBlocksOf(const TarnFirewall::FWAddress_& record, std::vector<AddressBlock>& blocks);

/// The fewest blocks that cover the same addresses, in order, IPv4 first. Each block that lies in
/// what they cover lies in one of them.
std::vector<AddressBlock> merged(std::vector<AddressBlock> blocks);

/// The block of the longest prefix that holds all of them; nothing for none and for two families.
std::optional<AddressBlock> hullOf(const std::vector<AddressBlock>& blocks);

/// Whether one of these `merged` blocks holds this one.
bool holds(const std::vector<AddressBlock>& blocks, const AddressBlock& block);
