#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "TarnFWObject.h"
#include "TarnFWWire.h"

namespace TarnFirewall {

/// Kinds of protocol specs, as the header of a spec names them on the wire.
enum FWProtocolSpecType_t : std::uint32_t {
  FW_SPEC_NONE = 0,
  FW_SPEC_L4_PORT = 1,
  FW_SPEC_L4_PORT_RANGE = 2,
  FW_SPEC_L4_PORT_SET = 3,
  FW_SPEC_TCP_FLAGS = 4,
  FW_SPEC_TCP_OPTIONS = 5,
  FW_SPEC_ICMP_TYPE = 6,
  FW_SPEC_STATELESS = 7,
  FW_SPEC_DSCP = 8,
  FW_SPEC_STRICT = 9,
  FW_SPEC_SLOPPY = 10,
};

/// Where a spec looks.
enum FWProtocolSpecDir : unsigned char {
  FW_SPEC_DIR_BOTH = 0,
  FW_SPEC_DIR_SOURCE = 1,
  FW_SPEC_DIR_DESTINATION = 2,
};

/// Header in front of a spec's body in the rule record: bits 0 and 1 dir, bit 2 negated, bits 3 to
/// 10 the kind, the rest zero. Kind 0 means that there is no spec in this place.
struct FWSpecHeader_ {
  host16 word;

  unsigned char dir() const { return static_cast<unsigned char>(word & 0x3); }
  bool negated() const { return (word & 0x4) != 0; }
  unsigned int kind() const { return (static_cast<unsigned int>(word) >> 3) & 0xff; }
};
static_assert(sizeof(FWSpecHeader_) == 2 && alignof(FWSpecHeader_) == 1);

/// Source or destination ports in the rule record.
struct FWPortBlock_ {
  FWSpecHeader_ header;   // +0
  std::uint8_t body[36];  // +2  an L4 port, range or set
};
static_assert(sizeof(FWPortBlock_) == 38 && alignof(FWPortBlock_) == 1);
static_assert(offsetof(FWPortBlock_, body) == 2);

/// Connection specs in the rule record. TCP flags and ICMP type share one place.
struct FWSessionBlock_ {
  host16 flags;                 //  +0  bit 0 stateless, 5 to 10 DSCP, 11 strict, 12 sloppy
  std::uint8_t reserved[2];     //  +2  zero
  FWSpecHeader_ flagsHeader;    //  +4  of the TCP flags or ICMP spec
  std::uint8_t flagsBody[6];    //  +6
  FWSpecHeader_ optionsHeader;  // +12  of the TCP options spec
  std::uint8_t options[42];     // +14
};
static_assert(sizeof(FWSessionBlock_) == 56 && alignof(FWSessionBlock_) == 1);
static_assert(offsetof(FWSessionBlock_, reserved) == 2 &&
              offsetof(FWSessionBlock_, flagsHeader) == 4 &&
              offsetof(FWSessionBlock_, flagsBody) == 6 &&
              offsetof(FWSessionBlock_, optionsHeader) == 12 &&
              offsetof(FWSessionBlock_, options) == 14);

/// Bits of FWSessionBlock_::flags.
inline constexpr std::uint16_t kSessionStateless = 0x0001;
inline constexpr unsigned int kSessionDSCPShift = 5;
inline constexpr std::uint16_t kSessionDSCPMask = 0x3f << kSessionDSCPShift;
inline constexpr std::uint16_t kSessionStrict = 0x0800;
inline constexpr std::uint16_t kSessionSloppy = 0x1000;

/// What a rule asks of a packet beyond addresses and protocol: base of ports, TCP flags and
/// options, ICMP types, DSCP and the modes of connection tracking.
///
/// `toMessage` writes the body of the protocol spec; the list that holds it writes the header.
class CTarnFWProtocolSpec : public ITarnFWObject {
 public:
  /// Object type of a spec: its kind behind this number.
  static constexpr int kFirstType = 115;

  /// Throws CInvalidProtocolSpecDirException for a dir above 2.
  CTarnFWProtocolSpec(unsigned char dir, bool negated)
      : dir_(dir <= FW_SPEC_DIR_DESTINATION ? dir : refuseDir(dir)), negated_(negated) {}

  int getType() const override { return kFirstType + static_cast<int>(getSpecType()); }
  std::string toString() const final;
  void appendTo(std::string& text) const override = 0;

  virtual FWProtocolSpecType_t getSpecType() const { return FW_SPEC_NONE; }

  /// Throws CInvalidProtocolSpecDirException for a dir above 2; nothing has changed then.
  virtual void setDir(unsigned char dir);

  unsigned char getDir() const { return dir_; }
  bool isNegated() const { return negated_; }
  void setNegated(bool negated) { negated_ = negated; }

  /// The header that stands in front of this spec's body.
  FWSpecHeader_ header() const;

 protected:
  void appendNegation(std::string& text) const {
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

  std::unique_ptr<CTarnFWProtocolSpec> next_;  // in the list that holds this spec
  std::uint8_t dir_;
  bool negated_;
};

}  // namespace TarnFirewall
