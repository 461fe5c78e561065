#pragma once

#include <cstring>

#include "TarnFWConnectionRecord.h"
#include "TarnFWSortedList.h"

namespace TarnFirewall {

/// Orders connections by their bytes, as the kernel sorts them.
struct CTarnFWConnectionCompare {
  bool operator()(const FWConnection_& left, const FWConnection_& right) const {
    return std::memcmp(&left, &right, sizeof left) < 0;
  }
};

/// A set of connections, as commands name them. Its text is "{ from 10.0.0.1:1024 to
/// 10.0.0.2:80}"; all addresses print as IPv4, also the first bytes of an IPv6 address: logs are
/// searched for this form.
class CTarnFWConnectionList final
    : public CTarnFWSortedList<FWConnection_, CTarnFWConnectionCompare, 129> {
 public:
  /// Keeps a copy; a connection that is there already changes nothing. Always true.
  bool addConnection(const FWConnection_& connection);

 private:
  void appendEntry(CTarnFWText& text, const FWConnection_& connection) const override;
};

}  // namespace TarnFirewall
