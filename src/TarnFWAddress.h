#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "TarnFWObject.h"
#include "TarnFWRecords.h"

namespace TarnFirewall {

/// A MAC address, first octet first.
struct fw_ether_ {
  std::uint8_t octet[6];
};
static_assert(sizeof(fw_ether_) == 6 && alignof(fw_ether_) == 1);

/// Base of everything that a rule or a set matches an end of the traffic by.
class CTarnFWAddress : public ITarnFWObject {
 public:
  /// 144, for every address that is a single record.
  unsigned int getMsgSize() const override;

  virtual bool isIPAddress() const;
  virtual bool isMACAddress() const;

  /// True when the address stands for others: a reference to a set, an attribute.
  virtual bool isContainer() const;
  virtual bool isIPv4Address() const;
  virtual bool isIPv6Address() const;

  /// Name of the set that is referred to; empty for every other address.
  virtual std::string getName() const;

  /// Order of the type code, then plain before negated, then the order of the class. Not always a
  /// strict weak order: see the classes.
  virtual bool operator<(const CTarnFWAddress& other) const = 0;

  /// Appends what `toString` gives, without a string of its own on the way where the class can.
  void appendTo(CTarnFWText& text) const override;

  /// True when the address means everything but this one.
  bool isNegated() const { return negated_; }
  void setNegated(bool negated) { negated_ = negated; }

 protected:
  explicit CTarnFWAddress(bool negated = false) : negated_(negated) {}

  bool negated_;
};

}  // namespace TarnFirewall
