#pragma once

#include "TarnFWCreateCmd.h"

namespace TarnFirewall {

/// Head of a message that creates an address set or a container. Integers in host order.
struct FWAddrSetHead_ {
  FWAddrSetID_t name;            //  +0
  host64 sequence;               // +38  0
  host32 count;                  // +46  entries
  host32 type;                   // +50  1 for an address set, the container's own for a container
  host32 size;                   // +54  bytes of the entries
  std::uint8_t flags;            // +58  low two bits in every request; bit 3: IPv6 in the list
  std::uint8_t reserved[3];      // +59
  std::uint8_t transaction[16];  // +62  filled in by the reply
  std::uint8_t reservedToo[8];   // +78
};
static_assert(sizeof(FWAddrSetHead_) == 86 && alignof(FWAddrSetHead_) == 1);
static_assert(offsetof(FWAddrSetHead_, sequence) == 38 && offsetof(FWAddrSetHead_, count) == 46 &&
              offsetof(FWAddrSetHead_, type) == 50 && offsetof(FWAddrSetHead_, size) == 54 &&
              offsetof(FWAddrSetHead_, flags) == 58 && offsetof(FWAddrSetHead_, reserved) == 59 &&
              offsetof(FWAddrSetHead_, transaction) == 62 &&
              offsetof(FWAddrSetHead_, reservedToo) == 78);

inline constexpr CTarnFWCreateCmd::Layout kAddrSetLayout = {
    sizeof(FWAddrSetHead_), offsetof(FWAddrSetHead_, flags), offsetof(FWAddrSetHead_, transaction)};

}  // namespace TarnFirewall
