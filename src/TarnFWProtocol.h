#pragma once

#include <cstdint>
#include <string>

#include "TarnFWObject.h"

namespace TarnFirewall {

/// What the number of a protocol means.
enum class FWProtocolLayer : bool {
  ethernet = false,  // an ethertype
  ip = true,         // an IP protocol
};

/// The layer of a flag that is set for layer 3, as the rule record has it.
constexpr FWProtocolLayer protocolLayer(bool layer3) {
  return layer3 ? FWProtocolLayer::ip : FWProtocolLayer::ethernet;
}

/// What a rule matches above its addresses: one IP protocol (layer 3) or one ethertype (layer 2),
/// or any of them. A plain value, as rules keep it.
class CTarnFWProtocolMatch {
 public:
  /// Any protocol of the layer.
  explicit CTarnFWProtocolMatch(FWProtocolLayer layer) : layer_(layer) {}

  /// One protocol, or every other.
  CTarnFWProtocolMatch(FWProtocolLayer layer, unsigned short number, bool negated)
      : number_(number), layer_(layer), negated_(negated), defined_(true) {}

  /// Either. Throws CUnsupportedException when negated without being defined.
  CTarnFWProtocolMatch(bool defined, unsigned short number, FWProtocolLayer layer, bool negated);

  void appendTo(CTarnFWText& text) const;

  /// The labelled form, with "Protocol :" or "Ethertype :" as its word.
  std::string toString2() const;

  /// Defines the protocol.
  void setProtocol(unsigned short number, bool negated);

  /// IP protocol number or ethertype, host order; 0 when not defined.
  unsigned short getNumber() const { return number_; }
  bool isLayer3() const { return layer_ == FWProtocolLayer::ip; }
  bool isNegated() const { return negated_; }
  bool isDefined() const { return defined_; }

  /// The number when exactly one IP protocol is matched: defined, layer 3 and not negated; else -1.
  int getIPProtocol() const { return defined_ && isLayer3() && !negated_ ? number_ : -1; }

 private:
  void appendNumber(CTarnFWText& text) const;

  std::uint16_t number_ = 0;
  FWProtocolLayer layer_;
  bool negated_ = false;
  bool defined_ = false;
};

/// The same as an object. It has no wire form of its own: the rule record holds its number and
/// flags.
class CTarnFWProtocol final : public ITarnFWObject, public CTarnFWProtocolMatch {
 public:
  static constexpr int kType = 19;

  using CTarnFWProtocolMatch::CTarnFWProtocolMatch;

  unsigned int getMsgSize() const override { return 0; }
  int getType() const override { return kType; }
  std::string toString() const override;
  void appendTo(CTarnFWText& text) const override { CTarnFWProtocolMatch::appendTo(text); }
  /// Writes nothing and reports 0 bytes.
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) override;
};

}  // namespace TarnFirewall
