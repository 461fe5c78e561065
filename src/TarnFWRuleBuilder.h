#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "TarnFWRule.h"
#include "TarnFWRuleParts.h"

namespace TarnFirewall {

/// Makes rules, piece by piece or from a record of the kernel. One builder may make many rules, one
/// after the other.
///
/// The setters throw what the objects throw that they make, and leave the builder as it was then.
class CTarnFWRuleBuilder {
 public:
  CTarnFWRuleBuilder() = default;
  /// A builder into which a record is read, as by `init`.
  explicit CTarnFWRuleBuilder(const FWRule_* record) { read(*record); }

  void setId(unsigned int id) { parts_.id = id; }
  void setPosition(int position) { parts_.position = position; }
  /// Throws CInvalidRuleDirectionException for a value above 2.
  void setDirection(FWRuleDirection_t direction);
  /// IPv6 for true, IPv4 for false.
  void setInetAF(bool inet6) { parts_.af = inet6 ? FW_AF_INET6 : FW_AF_INET; }
  void setInternal() { parts_.makeExtras().internal = true; }
  /// Keeps the first 31 characters and warns of the rest. The tag outlives the rule: the next one
  /// has it too unless another is set.
  void setTag(const std::string& tag);
  void setTag(const char* tag);

  /// Any protocol of a layer. Comes before `setProtocol` with a number, which throws
  /// CUnsupportedException otherwise.
  void setType(bool layer3);
  void setProtocol(unsigned short number, bool negated);
  void setProtocol(const CTarnFWProtocol& protocol) { parts_.protocol = protocol; }
  /// False while there is no protocol.
  bool isLayer3() const { return parts_.protocol && parts_.protocol->isLayer3(); }

  void setAction(std::unique_ptr<CTarnFWRuleAction> action) { parts_.action = std::move(action); }
  /// Makes the actions without data and, with the key policy, encrypt and pbr. Any other action is
  /// left out without an error: the caller makes those.
  void setAction(FWRuleAction_t action, std::string keyPolicy);
  /// A load balancer, with options unless the text is null or empty.
  void setAction(unsigned short type, unsigned short idleTimeout, unsigned short closeTimeout,
                 const char* options);
  /// These throw CUnsupportedException while there is no action.
  void setALG(FWDynamicApp_t app, bool mark) { requireAction().enableDynamic(app, mark); }
  void setEnableLog() { requireAction().enableLogPacket(); }
  void setEnableLBRule() { requireAction().enableLBRule(); }
  void setDisableFlowRecord() { requireAction().enableNoFlow(); }

  /// An end of the traffic: an address object, the name of an address set, an IPv4 address in
  /// network order with its prefix, the 16 bytes of an IPv6 address with its prefix, a MAC address
  /// in the low 6 bytes in memory order, the 6 bytes of a MAC address.
  void setSource(std::unique_ptr<CTarnFWAddress> address) {
    parts_.source = makeAddress(std::move(address));
  }
  void setSource(const char* setName) { parts_.source = makeAddress(setName); }
  void setSource(unsigned int ip, unsigned char prefix) { parts_.source = makeAddress(ip, prefix); }
  void setSource(const unsigned int* ip6, unsigned char prefix) {
    parts_.source = makeAddress(ip6, prefix);
  }
  void setSource(unsigned long mac) { parts_.source = makeAddress(mac); }
  void setSource(const unsigned char* mac) { parts_.source = makeAddress(mac); }
  void setDest(std::unique_ptr<CTarnFWAddress> address) {
    parts_.destination = makeAddress(std::move(address));
  }
  void setDest(const char* setName) { parts_.destination = makeAddress(setName); }
  void setDest(unsigned int ip, unsigned char prefix) {
    parts_.destination = makeAddress(ip, prefix);
  }
  void setDest(const unsigned int* ip6, unsigned char prefix) {
    parts_.destination = makeAddress(ip6, prefix);
  }
  void setDest(unsigned long mac) { parts_.destination = makeAddress(mac); }
  void setDest(const unsigned char* mac) { parts_.destination = makeAddress(mac); }
  void setRuleAddress(bool isSource, std::unique_ptr<CTarnFWAddress> address) {
    end(isSource) = makeAddress(std::move(address));
  }
  void setRuleAddress(bool isSource, const char* setName) { end(isSource) = makeAddress(setName); }
  void setRuleAddress(bool isSource, unsigned int ip, unsigned char prefix) {
    end(isSource) = makeAddress(ip, prefix);
  }
  void setRuleAddress(bool isSource, const unsigned int* ip6, unsigned char prefix) {
    end(isSource) = makeAddress(ip6, prefix);
  }
  void setRuleAddress(bool isSource, unsigned long mac) { end(isSource) = makeAddress(mac); }
  void setRuleAddress(bool isSource, const unsigned char* mac) { end(isSource) = makeAddress(mac); }
  /// These do nothing while there is no address.
  void negateSource() { negate(parts_.source); }
  void negateDest() { negate(parts_.destination); }
  void negateRuleAddress(bool isSource) { negate(end(isSource)); }

  /// Ports of an end: a spec, a range or a single port.
  void setSourcePort(std::unique_ptr<CTarnFWProtocolSpec> port) {
    parts_.sourcePorts.setSpec(std::move(port));
  }
  void setSourcePort(unsigned short low, unsigned short high, bool negated);
  void setSourcePort(unsigned short port, bool negated);
  void setDestPort(std::unique_ptr<CTarnFWProtocolSpec> port) {
    parts_.destinationPorts.setSpec(std::move(port));
  }
  void setDestPort(unsigned short low, unsigned short high, bool negated);
  void setDestPort(unsigned short port, bool negated);
  /// Add to a set of ports, made where there is none. Throw CUnsupportedException when the end has
  /// another form of port.
  void addSourcePort(unsigned short low, unsigned short high);
  void addSourcePort(unsigned short port);
  void addDestPort(unsigned short low, unsigned short high);
  void addDestPort(unsigned short port);
  /// Throw CUnsupportedException while the end has no port.
  void negateSourcePort();
  void negateDestPort();

  /// Specs of the connection. Throw CDuplicateProtocolSpecException for a second one of a kind.
  void addProtocolSpec(std::unique_ptr<CTarnFWProtocolSpec> spec);
  void setStateless();
  void setSloppy();
  void setStrict();
  void addICMPType(unsigned char type, bool negated);
  void addICMPTypeCode(unsigned char type, unsigned char code, bool negated);
  void addTCPFlags(unsigned char flags, bool negated);

  void setExtendedSource(std::unique_ptr<CTarnFWContainerID> id) {
    parts_.makeExtras().extendedSource = std::move(id);
  }
  void setAttributeProfile(std::unique_ptr<CTarnFWContainerID> id) {
    parts_.makeExtras().attributeProfile = std::move(id);
  }

  /// Both throw CUnsupportedException. Weaker than the checks of the rule itself: a strict rule
  /// that is not TCP passes here, and so do ports of the connection beside those of an end.
  void validateRule() const;
  void validateProtocolSpec() const;

  /// The rule; the builder is empty then, but for the tag. Null when a check fails, which is logged
  /// as an error: the objects stay with the builder then, unless the rule had taken them.
  std::unique_ptr<CTarnFWRule> buildRule();

  /// The same of a record alone, without a builder: the rule and its parts are made in `memory`
  /// where they stay, or as objects of their own when that is null. Throws what the readers of the
  /// parts throw.
  static std::unique_ptr<CTarnFWRule> buildRule(const FWRule_& record, CTarnFWLoadMemory* memory);

  /// Back to the start, but for the tag.
  void init();

  /// Reads a record into an empty builder, see `readRuleRecord`. Throws what the readers of its
  /// parts throw.
  void init(const FWRule_* record);

 private:
  static std::unique_ptr<CTarnFWAddress> makeAddress(std::unique_ptr<CTarnFWAddress> address);
  static std::unique_ptr<CTarnFWAddress> makeAddress(const char* setName);
  static std::unique_ptr<CTarnFWAddress> makeAddress(unsigned int ip, unsigned char prefix);
  static std::unique_ptr<CTarnFWAddress> makeAddress(const unsigned int* ip6, unsigned char prefix);
  static std::unique_ptr<CTarnFWAddress> makeAddress(unsigned long mac);
  static std::unique_ptr<CTarnFWAddress> makeAddress(const unsigned char* mac);
  std::unique_ptr<CTarnFWAddress>& end(bool isSource) {
    return isSource ? parts_.source : parts_.destination;
  }
  static void negate(std::unique_ptr<CTarnFWAddress>& address);

  CTarnFWRuleAction& requireAction() const;
  /// Parts with the tag alone.
  FWRuleParts freshParts() const;
  void read(const FWRule_& record);

  FWRuleParts parts_;  // at most one spec in a list of ports
};

}  // namespace TarnFirewall
