#pragma once

#include "TarnFWProtocolSpec.h"

namespace TarnFirewall {

/// Base of the specs that have no header and body but bits in the flag word of the session block:
/// stateless, strict, sloppy and DSCP. They look both ways and are never negated.
///
/// `toMessage` is given the whole session block and leaves all other bits of it alone.
class CTarnFWProtocolSpecSession : public CTarnFWProtocolSpec {
 public:
  unsigned int getMsgSize() const override { return sizeof(FWSessionBlock_); }
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) final;

 protected:
  CTarnFWProtocolSpecSession() : CTarnFWProtocolSpec(FW_SPEC_DIR_BOTH, false) {}

  /// The bits that this spec sets in FWSessionBlock_::flags.
  virtual std::uint16_t flagBits() const = 0;
};

}  // namespace TarnFirewall
