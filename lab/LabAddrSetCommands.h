// What the parts of the address-set commands share.
#ifndef TARNLAB_ADDR_SET_COMMANDS_H
#define TARNLAB_ADDR_SET_COMMANDS_H

#include "LabAddressRecord.h"
#include "LabChain.h"
#include "LabSets.h"

namespace TarnLab::AddrSets {

inline constexpr std::size_t nameSize = 38;

/// The address sets and containers of a filter, or of those that an agent shares.
inline constexpr SetKind sets{"addrsets", Status::noAddrSet, "address set"};

inline constexpr Name name{0, nameSize, "name", "address set"};

inline constexpr RecordKind addresses{AddressRecord::size, AddressRecord::text};
inline constexpr RecordKind elements{0, nullptr, {}, Chain::lines};

}  // namespace TarnLab::AddrSets

#endif
