#include "FlowAddresses.h"

#include <netinet/in.h>

#include <algorithm>
#include <cstring>

#include "AddressText.h"
#include "FlowNames.h"
#include "FlowStates.h"
#include "TarnFWText.h"
#include "TarnFWUtilFlow.h"

using namespace TarnFirewall;

namespace {

constexpr std::size_t kMostCharacters = 155;

template <typename Ends>
bool isTranslated(const Ends& ends) {
  return std::any_of(std::begin(ends.translated), std::end(ends.translated),
                     [](std::uint8_t byte) { return byte != 0; });
}

/// The addresses alone.
template <typename Ends>
void appendPair(std::string& text, const Ends& ends) {
  appendAddress(text, ends.source);
  text += " -> ";
  appendAddress(text, ends.destination);
  if (!isTranslated(ends)) return;
  text += " [";
  appendAddress(text, ends.translated);
  text += ']';
}

/// An ICMP flow has its type and its code where others have the data of a gateway.
template <typename Ends>
void appendIcmp(std::string& text, const Ends& ends) {
  appendPair(text, ends);
  std::uint8_t typeAndCode[2];
  std::memcpy(typeAndCode, &ends.transport.alg, sizeof typeAndCode);
  for (const std::uint8_t number : typeAndCode) {
    text += ' ';
    appendDecimal(text, number);
  }
}

template <typename Address>
void appendEnd(std::string& text, const Address& address, const char* protocol,
               std::uint16_t port) {
  char service[32];
  appendAddress(text, address);
  text += ':';
  text += PortStr(protocol, port, service);
  text += '(';
  appendDecimal(text, port);
  text += ')';
}

template <typename Ends>
void appendEnds(std::string& text, const Ends& ends, const char* protocol) {
  appendEnd(text, ends.source, protocol, ends.transport.sourcePort);
  text += " -> ";
  appendEnd(text, ends.destination, protocol, ends.transport.destinationPort);
  if (!isTranslated(ends)) return;
  text += " [";
  appendEnd(text, ends.translated, protocol, ends.transport.translatedPort);
  text += ']';
}

void appendAlg(std::string& text, const tarnFlowAlgData& alg) {
  char gateway[40];
  StateAlgStr(alg.flowType, alg.type, alg.port, alg.controlFlowId, gateway);
  text += gateway;
}

template <typename Ends>
void appendTcp(std::string& text, const Ends& ends) {
  const FWFlowTransport_& transport = ends.transport;
  char state[16];
  appendEnds(text, ends, "tcp");
  text += ' ';
  appendDecimal(text, std::uint16_t{transport.tcpNumber});
  text += ' ';
  text += TCPStateStr(transport.sourceTcpState, state);
  text += ':';
  text += TCPStateStr(transport.destinationTcpState, state);
  text += ' ';
  appendAlg(text, transport.alg);
  text += " rtt ";
  appendDecimal(text, std::uint32_t{transport.roundTripTime});
  text += " retrans ";
  appendDecimal(text, std::uint32_t{transport.firstRetransmissions});
  text += '/';
  appendDecimal(text, std::uint32_t{transport.secondRetransmissions});
}

template <typename Ends>
void appendUdp(std::string& text, const Ends& ends) {
  appendEnds(text, ends, "udp");
  text += ' ';
  appendAlg(text, ends.transport.alg);
}

/// TCP and UDP by family. The line end of the last case is meant: scripts take the counters from
/// the line after it.
template <typename Append>
void appendByFamily(std::string& text, const FWFlowRecord_& flow, Append append) {
  switch (flow.family) {
    case FW_FLOW_IPV4:
      return append(loadRecord<FWFlowIPv4_>(flow.addresses));
    case FW_FLOW_IPV6:
      return append(loadRecord<FWFlowIPv6_>(flow.addresses));
    default:
      return appendText(text, "Unknown Address family %d\n", static_cast<int>(flow.family));
  }
}

/// Any other protocol by family.
void appendGeneric(std::string& text, const FWFlowRecord_& flow) {
  const auto ipv6 = loadRecord<FWFlowIPv6_>(flow.addresses);
  switch (flow.family) {
    case FW_FLOW_IPV4:
      return appendPair(text, loadRecord<FWFlowIPv4_>(flow.addresses));
    case FW_FLOW_IPV6:
      return appendPair(text, ipv6);
    default:
      return appendText(text, "Other(%lx)",
                        static_cast<unsigned long>(ipv6.transport.alg.controlFlowId));
  }
}

/// Protocols that belong to one family take its form whatever the record's family says.
void appendIp(std::string& text, const FWFlowRecord_& flow) {
  switch (flow.protocol) {
    case IPPROTO_ICMP:
      return appendIcmp(text, loadRecord<FWFlowIPv4_>(flow.addresses));
    case IPPROTO_ICMPV6:
      return appendIcmp(text, loadRecord<FWFlowIPv6_>(flow.addresses));
    case IPPROTO_IP:
      return appendPair(text, loadRecord<FWFlowIPv4_>(flow.addresses));
    case IPPROTO_IPV6:
      return appendPair(text, loadRecord<FWFlowIPv6_>(flow.addresses));
    case IPPROTO_TCP:
      return appendByFamily(text, flow, [&](const auto& ends) { appendTcp(text, ends); });
    case IPPROTO_UDP:
      return appendByFamily(text, flow, [&](const auto& ends) { appendUdp(text, ends); });
    default:
      return appendGeneric(text, flow);
  }
}

}  // namespace

void appendConnection(std::string& text, const FWFlowRecord_& flow) {
  const std::size_t begin = text.size();
  if (isLayer2(flow.kind)) {
    appendMac(text, flow.sourceMac);
    text += ' ';
    appendMac(text, flow.destinationMac);
  } else {
    appendIp(text, flow);
  }
  if (text.size() - begin > kMostCharacters) text.resize(begin + kMostCharacters);
}
