#include "TarnFWConnectionList.h"

#include <arpa/inet.h>

#include "TarnFWText.h"

namespace TarnFirewall {

namespace {

void appendEnd(CTarnFWText& text, const char* word, const std::uint8_t* address,
               std::uint16_t port) {
  char ipv4[INET_ADDRSTRLEN];
  inet_ntop(AF_INET, address, ipv4, sizeof ipv4);
  text += word;
  text += ipv4;
  appendText(text, ":%d", static_cast<int>(port));
}

}  // namespace

bool CTarnFWConnectionList::addConnection(const FWConnection_& connection) {
  add(connection);
  return true;
}

void CTarnFWConnectionList::appendEntry(CTarnFWText& text, const FWConnection_& connection) const {
  appendEnd(text, " from ", connection.sourceAddress, connection.sourcePort);
  appendEnd(text, " to ", connection.destinationAddress, connection.destinationPort);
}

}  // namespace TarnFirewall
