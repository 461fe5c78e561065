#pragma once

#include "TarnFWFixedCmd.h"
#include "TarnFWIdentityRecords.h"

namespace TarnFirewall {

/// A user and, after it, as many `fwattr_sid` as it counts.
struct FWUidMapping_ {
  std::uint8_t active;       //  +0  not 0: the user is active
  std::uint8_t reserved[3];  //  +1
  host32 sidCount;           //  +4  identifiers that follow
  host32 reservedToo;        //  +8
  host32 connections;        // +12  connections of the user
  fwattr_sid uid;            // +16
};
static_assert(sizeof(FWUidMapping_) == 88 && alignof(FWUidMapping_) == 1);
static_assert(offsetof(FWUidMapping_, active) == 0 && offsetof(FWUidMapping_, reserved) == 1 &&
              offsetof(FWUidMapping_, sidCount) == 4 && offsetof(FWUidMapping_, reservedToo) == 8 &&
              offsetof(FWUidMapping_, connections) == 12 && offsetof(FWUidMapping_, uid) == 16);

/// Asks for the users of a filter with their security identifiers, and prints them.
///
/// Command 81  request  +4  u32  users, as command 82 counts them      reply  +84  `FWUidMapping_`
///                      +8  u32  their bytes, as command 82 says                   and its
///                                                                                 identifiers,
///                                                                                 user by user
class CTarnFWCmdGetUid2SidMapping final : public CTarnFWPrinted<CTarnFWSizedCmd<81>> {
 public:
  /// Throws `CIntegerOverflowException` for a size that no message holds.
  CTarnFWCmdGetUid2SidMapping(const dvs_port_* port, unsigned int users, unsigned int size);
  std::string toString() const override { return "describe uid2sidmap" + dvsportToString("of"); }

 private:
  void fill(std::span<std::byte> body) const override;
  void print(const CTarnFWCmdReply& reply, const PrettyPrinting& out) const override;

  unsigned int users_;
  unsigned int usersSize_;
};

}  // namespace TarnFirewall
