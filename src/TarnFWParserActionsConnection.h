#pragma once

/// Actions of connections and of the statements about them. Descriptions live in the parse's arena.

#include "TarnFWAddress.h"
#include "TarnFWCmd.h"
#include "TarnFWConnectionList.h"
#include "TarnFWParserActions.h"

namespace TarnFirewall {

/// An end of a connection as it was written.
struct FWConnectionEnd {
  std::unique_ptr<CTarnFWAddress> address;
  std::int64_t port;
};

/// A connection of a list. Its ports stand in the record as they are, in host order: the kernel
/// reads these statements so. "any" is the address of all ones. Throws `CParseFailure` with status
/// 38 for a port of more than 16 bits, and `CInvalidAddressException` for an IPv6 address, which
/// has no room there.
FWConnection_* connection(const FWParse& parse, const FWConnectionEnd& source,
                          const FWConnectionEnd& destination);
FWConnection_* connection(const FWParse& parse, const FWIPPort& source,
                          const FWIPPort& destination);

/// The connection whose attributes are set, with its ports in network order. Addresses of two
/// families and an unknown protocol end the parse silently; a port of more than 16 bits fails as
/// above. A direction is "dir_in" or "dir_out"; any other word stands for both.
FWConnection_* connectionSpec(const FWParse& parse, const FWConnectionEnd& source,
                              const FWConnectionEnd& destination, const FWParserText& protocol,
                              const FWParserText& direction);

/// The list with one connection more; null begins a list.
std::unique_ptr<CTarnFWConnectionList> withConnection(std::unique_ptr<CTarnFWConnectionList> list,
                                                      const FWConnection_& connection);

std::unique_ptr<CTarnFWCmd> setConnections(const dvs_port_* port,
                                           std::unique_ptr<CTarnFWConnectionList> list);

/// `from` is a flow id, of 64 bits.
std::unique_ptr<CTarnFWCmd> getConnections(const dvs_port_* port, std::int64_t from);

}  // namespace TarnFirewall
