#include <netinet/in.h>

#include <algorithm>
#include <cstring>

#include "FlowExclusionText.h"
#include "HandlerCommon.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

/// Reads a field's text; the bit of the field, or 0 for a text that is none.
using ReadField = std::uint32_t (*)(const FlowExclusionEnd& end, const char* text,
                                    FWFlowExclusion_& record);

std::uint32_t readMac(const FlowExclusionEnd& end, const char* text, FWFlowExclusion_& record) {
  return ParseMACString(text, record.*end.mac, record.*end.macMask) ? end.macBit : 0;
}

std::uint32_t readEthertypes(const FlowExclusionEnd&, const char* text, FWFlowExclusion_& record) {
  constexpr unsigned int kMost = sizeof record.ethertypes / sizeof record.ethertypes[0];
  std::uint16_t types[kMost] = {};
  unsigned int count = 0;
  if (!ParseEtherTypeString(text, types, kMost, &count)) return 0;
  for (unsigned int i = 0; i < count; ++i) record.ethertypes[i] = wire::networkToHost(types[i]);
  record.ethertypeCount = static_cast<std::uint8_t>(count);
  return FW_EXCLUSION_ETHERTYPE;
}

std::uint32_t readAddress(const FlowExclusionEnd& end, const char* text, FWFlowExclusion_& record) {
  in_addr ipv4[2];
  in6_addr ipv6[2];
  int isRange = 0;
  int isIpv6 = 0;
  if (!ParseIPString(text, ipv4, ipv6, &isRange, &isIpv6)) return 0;
  if (isIpv6 != 0) {
    std::memcpy(record.*end.address, &ipv6[0], sizeof ipv6[0]);
    std::memcpy(record.*end.addressEnd, &ipv6[1], sizeof ipv6[1]);
    record.fields = record.fields | FW_EXCLUSION_IPV6;
  } else {
    std::memcpy(record.*end.address, ipv4, sizeof ipv4);
  }
  if (isRange != 0) record.fields = record.fields | end.rangeBit;
  return end.addressBit;
}

std::uint32_t readProtocols(const FlowExclusionEnd&, const char* text, FWFlowExclusion_& record) {
  unsigned int count = 0;
  if (!ParseProtocolString(text, record.protocols, sizeof record.protocols, &count)) return 0;
  record.protocolCount = static_cast<std::uint8_t>(count);
  return FW_EXCLUSION_PROTOCOL;
}

std::uint32_t readPort(const FlowExclusionEnd& end, const char* text, FWFlowExclusion_& record) {
  std::uint16_t low = 0;
  std::uint16_t high = 0;
  if (!ParsePortString(text, &low, &high)) return 0;
  record.*end.port = wire::networkToHost(low);
  record.*end.portEnd = wire::networkToHost(high);
  return end.portBit;
}

std::uint32_t readVnic(const FlowExclusionEnd& end, const char* text, FWFlowExclusion_& record) {
  int index = 0;
  int isVnic = 0;
  if (!ParseUUIDString(text, record.*end.vnic, &index, &isVnic)) return 0;
  record.*end.vnicIndex = static_cast<std::uint32_t>(index);
  return isVnic != 0 ? end.vnicBit : end.vmBit;
}

struct Field {
  const FlowExclusionEnd& end;
  ReadField read;
  const char* missing;  // when no "|" follows; null for the last field
  const char* bad;
  const char* portOf = nullptr;  // the end that is named when a port has no protocol
};

constexpr Field kFields[] = {
    {kExclusionSource, readMac, "ERROR: cannot find source mac address\n",
     "ERROR: invalid source mac address %s\n"},
    {kExclusionDestination, readMac, "ERROR: cannot find dest mac address\n",
     "ERROR: invalid dest mac address %s\n"},
    {kExclusionSource, readEthertypes, "ERROR: cannot find ethertype\n",
     "ERROR: invalid ethertype %s\n"},
    {kExclusionSource, readAddress, "ERROR: cannot find source ip address\n",
     "ERROR: invalid source ip address %s\n"},
    {kExclusionDestination, readAddress, "ERROR: cannot find dest ip address\n",
     "ERROR: invalid dest ip address %s\n"},
    {kExclusionSource, readProtocols, "ERROR: cannot find ip protocol\n",
     "ERROR: invalid ip protocol %s\n"},
    {kExclusionSource, readPort, "ERROR: cannot find source port\n",
     "ERROR: invalid source port %s\n", "source"},
    {kExclusionDestination, readPort, "ERROR: cannot find dest port\n",
     "ERROR: invalid dest port %s\n", "dest"},
    {kExclusionSource, readVnic, "ERROR: cannot find source vnic/vm\n",
     "ERROR: invalid source vnic/vm %s\n"},
    {kExclusionDestination, readVnic, nullptr, "ERROR: invalid dest vnic/vm %s\n"},
};

/// A port counts for TCP and UDP only, so these must be named before it, and nothing else.
bool mayHavePort(const char* end, const FWFlowExclusion_& record) {
  if ((record.fields & FW_EXCLUSION_PROTOCOL) == 0)
    return error("ERROR: %s port is defined but protocol is not defined\n", end), false;
  if ((record.negated & FW_EXCLUSION_PROTOCOL) != 0)
    return error("ERROR: %s port is defined for negate protocol\n", end), false;
  const std::uint8_t* const last = record.protocols + record.protocolCount;
  const std::uint8_t* const other = std::find_if(
      record.protocols + 0, last,
      [](std::uint8_t protocol) { return protocol != IPPROTO_TCP && protocol != IPPROTO_UDP; });
  if (other == last) return true;
  return error("ERROR: %s port is defined for protocol %d\n", end, *other), false;
}

/// Reads a field that is not empty.
bool take(const Field& field, const char* text, FWFlowExclusion_& record) {
  const bool negated = text[0] == '!';
  if (negated && *++text == '\0') return true;
  const std::uint32_t bit = field.read(field.end, text, record);
  if (bit == 0) return printWith(stderr, field.bad, text), false;
  if (field.portOf != nullptr && !mayHavePort(field.portOf, record)) return false;
  record.fields = record.fields | bit;
  if (negated) record.negated = record.negated | bit;
  return true;
}

}  // namespace

bool ParseFlowExclusion(char* text, FWFlowExclusion_& record) {
  for (const Field& field : kFields) {
    char* const value = text;
    if (field.missing != nullptr) {
      // Most fields of most definitions are empty.
      char* const separator = *value == '|' ? value : std::strchr(value, '|');
      if (separator == nullptr) return std::fputs(field.missing, stderr), false;
      *separator = '\0';
      text = separator + 1;
    }
    if (*value != '\0' && !take(field, value, record)) return false;
  }
  if (record.fields != 0) return true;
  return error("ERROR: empty flow exclusion definition\n"), false;
}
