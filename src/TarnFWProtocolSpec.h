#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "TarnFWObject.h"
#include "TarnFWRuleRecord.h"

namespace TarnFirewall {

/// What a rule asks of a packet beyond addresses and protocol: base of ports, TCP flags and
/// options, ICMP types, DSCP and the modes of connection tracking.
///
/// `toMessage` writes the body of the protocol spec; the list that holds it writes the header.
class CTarnFWProtocolSpec : public ITarnFWObject {
 public:
  /// Object type of a spec: this number and its kind added up.
  static constexpr int kFirstType = 115;

  /// Throws CInvalidProtocolSpecDirException for a dir above 2.
  CTarnFWProtocolSpec(unsigned char dir, bool negated)
      : dir_(dir <= FW_SPEC_DIR_DESTINATION ? dir : refuseDir(dir)), negated_(negated) {}

  int getType() const override { return kFirstType + static_cast<int>(getSpecType()); }
  std::string toString() const final;
  void appendTo(CTarnFWText& text) const override = 0;

  virtual FWProtocolSpecType_t getSpecType() const { return FW_SPEC_NONE; }

  /// Throws CInvalidProtocolSpecDirException for a dir above 2; nothing has changed then.
  virtual void setDir(unsigned char dir);

  unsigned char getDir() const { return dir_; }
  bool isNegated() const { return negated_; }
  void setNegated(bool negated) { negated_ = negated; }

  /// The header that stands in front of this spec's body.
  FWSpecHeader_ header() const;

 protected:
  void appendNegation(CTarnFWText& text) const {
    if (negated_) text += "not ";
  }

  /// The whole of `toMessage` for a spec whose body is one record.
  template <typename Body>
  static bool writeBody(const Body& body, void* buffer, unsigned int size, unsigned int* written) {
    if (size < sizeof body) return false;
    storeRecord(buffer, body);
    if (written != nullptr) *written = sizeof body;
    return true;
  }

 private:
  [[noreturn]] static unsigned char refuseDir(unsigned char dir);

  friend class CTarnFWProtocolSpecList;

  std::uint8_t dir_;
  bool negated_;
};

}  // namespace TarnFirewall
