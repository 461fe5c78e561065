#pragma once

/// Actions of the statements about settings of a filter: spoof guard, TCP checks, timeouts, and how
/// much the kernel logs.

#include "TarnFWAddress.h"
#include "TarnFWCmd.h"
#include "TarnFWParserActions.h"

namespace TarnFirewall {

/// `addresses` is a list, `set` the name of a set, `mac` an Ethernet address.
std::unique_ptr<CTarnFWCmd> createSpoofGuard(const dvs_port_* port,
                                             std::unique_ptr<CTarnFWAddress> addresses,
                                             std::unique_ptr<CTarnFWAddress> mac);
std::unique_ptr<CTarnFWCmd> createSpoofGuard(const dvs_port_* port, const FWParserText& set,
                                             std::unique_ptr<CTarnFWAddress> mac);
std::unique_ptr<CTarnFWCmd> deleteSpoofGuard(const dvs_port_* port,
                                             std::unique_ptr<CTarnFWAddress> mac);

/// The protocol can only be "tcp", in any case.
std::unique_ptr<CTarnFWCmd> configTCPStrict(const dvs_port_* port, const FWParserText& protocol,
                                            bool strict);
std::unique_ptr<CTarnFWCmd> getTCPStrict(const dvs_port_* port, const FWParserText& protocol);

/// The value is judged before the name. Throws `CInvalidTimeoutException` for an unknown name.
std::unique_ptr<CTarnFWCmd> setTimeout(const dvs_port_* port, const FWParserText& name,
                                       std::int64_t value);

/// All timeouts at once, by a text of their 22 values.
std::unique_ptr<CTarnFWCmd> setTimeouts(const dvs_port_* port, const FWParserText& values);
std::unique_ptr<CTarnFWCmd> getTimeouts(const dvs_port_* port);

/// Null for a component without a name here, which makes no command and is no failure: texts for
/// other releases of the kernel load.
std::unique_ptr<CTarnFWCmd> debug(const dvs_port_* port, const FWParserText& component,
                                  std::int64_t level);

}  // namespace TarnFirewall
