#include "TarnFWParserActionsConnection.h"

#include <arpa/inet.h>

#include "TarnFWAddressIPv4.h"
#include "TarnFWAddressIPv6.h"
#include "TarnFWCmdGetConnectionStat.h"
#include "TarnFWCmdSetConnectionByList.h"

namespace TarnFirewall {

namespace {

/// Connections that one message asks for.
constexpr unsigned int kConnectionsPerMessage = 50000;

/// What the address classes of one family hold, into a field of 16 bytes. The grammar takes no
/// other class of the family where a connection's address stands.
template <typename Address, typename Value>
void storeAddress(std::uint8_t (&field)[16], const CTarnFWAddress& address) {
  Value value;
  static_cast<const Address&>(address).getAddress(&value);
  std::memcpy(field, &value, sizeof value);
}

in_addr ipv4Of(const CTarnFWAddress& address) {
  in_addr value = {INADDR_NONE};
  if (address.isIPv4Address()) {
    static_cast<const CTarnFWAddressIPv4&>(address).getAddress(&value);
  } else if (address.isIPv6Address()) {
    throw CInvalidAddressException(address.toString());
  }
  return value;
}

/// So that the bytes of the field are those of the host's number.
net16 unswappedPort(std::uint16_t port) { return htons(port); }

std::uint8_t directionOf(const FWParserText& word) {
  const std::string text = asString(word);
  if (text == "dir_in") return kConnectionIn;
  return text == "dir_out" ? kConnectionOut : std::uint8_t{0};
}

void storeAddresses(FWConnection_& connection, const CTarnFWAddress& source,
                    const CTarnFWAddress& destination) {
  if (!source.isIPAddress() || !destination.isIPAddress() ||
      source.isIPv4Address() != destination.isIPv4Address()) {
    throw SilentParseFailure();
  }
  if (source.isIPv4Address()) {
    storeAddress<CTarnFWAddressIPv4, in_addr>(connection.sourceAddress, source);
    storeAddress<CTarnFWAddressIPv4, in_addr>(connection.destinationAddress, destination);
  } else {
    connection.flags = kConnectionIPv6;
    storeAddress<CTarnFWAddressIPv6, in6_addr>(connection.sourceAddress, source);
    storeAddress<CTarnFWAddressIPv6, in6_addr>(connection.destinationAddress, destination);
  }
}

}  // namespace

FWConnection_* connection(const FWParse& parse, const FWConnectionEnd& source,
                          const FWConnectionEnd& destination) {
  const std::uint16_t sourcePort = portNumber(source.port);
  const std::uint16_t destinationPort = portNumber(destination.port);
  const in_addr from = ipv4Of(*source.address);
  return connection(parse, {from, sourcePort}, {ipv4Of(*destination.address), destinationPort});
}

FWConnection_* connection(const FWParse& parse, const FWIPPort& source,
                          const FWIPPort& destination) {
  FWConnection_ record{};
  std::memcpy(record.sourceAddress, &source.address, sizeof source.address);
  std::memcpy(record.destinationAddress, &destination.address, sizeof destination.address);
  record.sourcePort = unswappedPort(source.port);
  record.destinationPort = unswappedPort(destination.port);
  return parse.keep(record);
}

FWConnection_* connectionSpec(const FWParse& parse, const FWConnectionEnd& source,
                              const FWConnectionEnd& destination, const FWParserText& protocol,
                              const FWParserText& direction) {
  FWConnection_ record{};
  storeAddresses(record, *source.address, *destination.address);
  record.sourcePort = portNumber(source.port);
  record.destinationPort = portNumber(destination.port);
  const int number = parse.extra().protocols.number(protocol.data);
  if (number < 0) throw SilentParseFailure();
  record.protocol = static_cast<std::uint8_t>(number);
  record.flags = static_cast<std::uint8_t>(record.flags | directionOf(direction));
  return parse.keep(record);
}

std::unique_ptr<CTarnFWConnectionList> withConnection(std::unique_ptr<CTarnFWConnectionList> list,
                                                      const FWConnection_& connection) {
  if (list == nullptr) list = std::make_unique<CTarnFWConnectionList>();
  list->addConnection(connection);
  return list;
}

std::unique_ptr<CTarnFWCmd> setConnections(const dvs_port_* port,
                                           std::unique_ptr<CTarnFWConnectionList> list) {
  return std::make_unique<CTarnFWCmdSetConnectionByList>(port, std::move(list));
}

std::unique_ptr<CTarnFWCmd> getConnections(const dvs_port_* port, std::int64_t from) {
  return std::make_unique<CTarnFWCmdGetConnectionStat>(port, nullptr, kConnectionsPerMessage,
                                                       static_cast<std::uint64_t>(from));
}

}  // namespace TarnFirewall
