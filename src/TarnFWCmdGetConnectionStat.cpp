#include "TarnFWCmdGetConnectionStat.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include "TarnFWBootTime.h"
#include "TarnFWCmdPrint.h"
#include "TarnFWText.h"
#include "TarnFWUtilFlow.h"

namespace TarnFirewall {

namespace {

constexpr unsigned int kHead = 32;

/// What the printed line has of a connection's two ends.
struct Ends {
  char source[INET6_ADDRSTRLEN] = "";
  char destination[INET6_ADDRSTRLEN] = "";
  int sourcePort = 0;
  int destinationPort = 0;
  char alg[64] = "";
};

void setAlg(Ends& ends, const FWFlowRecord_& flow, const tarnFlowAlgData& alg) {
  if (flow.protocol == IPPROTO_TCP) {
    StateAlgStr(alg.flowType, alg.type, alg.port, alg.controlFlowId, ends.alg);
  }
}

Ends endsOf(const FWFlowRecord_& flow, unsigned int index) {
  Ends ends;
  const auto ipv4 = loadRecord<FWFlowIPv4_>(flow.addresses);
  // The ports are those of the IPv4 form for every family: scripts read the line as it is.
  ends.sourcePort = ipv4.transport.sourcePort;
  ends.destinationPort = ipv4.transport.destinationPort;
  switch (flow.family) {
    case FW_FLOW_IPV4:
      inet_ntop(AF_INET, ipv4.source, ends.source, sizeof ends.source);
      inet_ntop(AF_INET, ipv4.destination, ends.destination, sizeof ends.destination);
      setAlg(ends, flow, ipv4.transport.alg);
      break;
    case FW_FLOW_IPV6_HOST:
    case FW_FLOW_IPV6: {
      // No address of an IPv6 connection stands in the line, which scripts expect.
      constexpr in6_addr none{};
      inet_ntop(AF_INET6, &none, ends.source, sizeof ends.source);
      inet_ntop(AF_INET6, &none, ends.destination, sizeof ends.destination);
      setAlg(ends, flow, loadRecord<FWFlowIPv6_>(flow.addresses).transport.alg);
      break;
    }
    default:
      TARNFW_LOG_IN(kCheckCmdReply, LOG_WARNING,
                    "unknown address family for %d flow record: %d\n\n", static_cast<int>(index),
                    static_cast<int>(flow.family));
      break;
  }
  return ends;
}

/// "proto" and the protocol's word stand without a blank between them, as scripts expect.
void appendHead(std::string& line, const FWFlowRecord_& flow) {
  const FWLocalTime_ start = localTimeOf(static_cast<std::time_t>(flow.startTime));
  appendText(line, "%04d-%02d-%02dT%02d:%02d:%02dZ 0x%016llx af %-2u ethertype 0x%04x proto",
             start.year, start.month, start.day, start.hour, start.minute, start.second,
             wide(flow.flowId), static_cast<unsigned int>(flow.family),
             static_cast<unsigned int>(flow.ethertype));
}

void appendEnds(std::string& line, const FWFlowRecord_& flow, const Ends& ends) {
  switch (flow.protocol) {
    case IPPROTO_TCP:
      return appendText(line, "tcp   %s:%d -> %s:%d %s", ends.source, ends.sourcePort,
                        ends.destination, ends.destinationPort, ends.alg);
    case IPPROTO_UDP:
      return appendText(line, "udp   %s:%d -> %s:%d %s", ends.source, ends.sourcePort,
                        ends.destination, ends.destinationPort, ends.alg);
    case IPPROTO_ICMP:
      return appendText(line, "icmp  %s -> %s", ends.source, ends.destination);
    case IPPROTO_ICMPV6:
      return appendText(line, "icmp6 %s -> %s", ends.source, ends.destination);
    default:
      return appendText(line, "%-5d %s -> %s", static_cast<int>(flow.protocol), ends.source,
                        ends.destination);
  }
}

}  // namespace

CTarnFWCmdGetConnectionStat::CTarnFWCmdGetConnectionStat(const dvs_port_* port,
                                                         const FWConnFilter_*, unsigned int count,
                                                         std::uint64_t cursor)
    : CTarnFWPrinted(port,
                     countedSize(kHead, sizeof(FWFlowRecord_), count, "number of connections")),
      count_(count),
      cursor_(cursor) {}

std::string CTarnFWCmdGetConnectionStat::toString() const {
  std::string text = "describe connection stat";
  if (cursor_ != 0) appendText(text, " from %llu", wide(cursor_));
  return text + dvsportToString("of");
}

void CTarnFWCmdGetConnectionStat::fill(std::span<std::byte> body) const {
  TARNFW_TRACE_IN(kWriteCmdBody, LOG_DEBUG, FW_COMPONENT_CMD, 0,
                  "Fetching connection from 0x%016llx\n", wide(cursor_));
  storeAt(body, 0, std::uint8_t{1});
  storeAt(body, 4, net64(cursor_));
  storeAt(body, 12, host32(count_));
  storeAt(body, 28, host32(getMsgSize()));
}

void CTarnFWCmdGetConnectionStat::read(const CTarnFWCmdReply& reply) {
  (void)records(reply).checkedSize();
}

void CTarnFWCmdGetConnectionStat::print(const CTarnFWCmdReply& reply,
                                        const PrettyPrinting& out) const {
  TARNFW_TRACE_IN(kCheckCmdReply, LOG_DEBUG, FW_COMPONENT_CMD, 0, "connection count : %d\n\n",
                  static_cast<int>(reply.word(16)));
  unsigned int index = 0;
  for (const FWFlowRecord_& flow : records(reply)) {
    std::string line;
    appendHead(line, flow);
    appendEnds(line, flow, endsOf(flow, index++));
    out.print(out.context, "%s %llx %llx %llx %llx\n", line.c_str(), wide(flow.firstCounter),
              wide(flow.secondCounter), wide(flow.thirdCounter), wide(flow.fourthCounter));
  }
}

}  // namespace TarnFirewall
