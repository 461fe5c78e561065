#include <algorithm>
#include <string>

#include "AddressText.h"
#include "FlowExclusionText.h"
#include "FlowNames.h"
#include "TarnFWText.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

/// Appends the text of a field that the record names. False, with nothing appended, for one that it
/// does not name.
using AppendField = bool (*)(const FlowExclusionEnd& end, const FWFlowExclusion_& record,
                             std::string& text);

/// Whether the record names a field; appends "!" when it is negated.
bool begins(const FWFlowExclusion_& record, std::uint32_t bit, std::string& text) {
  if ((record.fields & bit) == 0) return false;
  if ((record.negated & bit) != 0) text += '!';
  return true;
}

bool appendMacs(const FlowExclusionEnd& end, const FWFlowExclusion_& record, std::string& text) {
  if (!begins(record, end.macBit, text)) return false;
  appendMac(text, record.*end.mac);
  text += '/';
  appendMac(text, record.*end.macMask);
  return true;
}

bool appendEthertypes(const FlowExclusionEnd&, const FWFlowExclusion_& record, std::string& text) {
  if (!begins(record, FW_EXCLUSION_ETHERTYPE, text)) return false;
  constexpr std::size_t kMost = sizeof record.ethertypes / sizeof record.ethertypes[0];
  for (std::size_t i = 0; i < std::min<std::size_t>(record.ethertypeCount, kMost); ++i) {
    text += i == 0 ? "0x" : ",0x";
    appendHex(text, std::uint16_t{record.ethertypes[i]}, 4);
  }
  return true;
}

/// An IPv4 address and what follows it stand in the field of one IPv6 address.
void appendIpv4(const std::uint8_t* bytes, std::string& text) {
  std::uint8_t address[4];
  std::copy_n(bytes, sizeof address, address);
  appendAddress(text, address);
}

bool appendAddresses(const FlowExclusionEnd& end, const FWFlowExclusion_& record,
                     std::string& text) {
  if (!begins(record, end.addressBit, text)) return false;
  const char separator = (record.fields & end.rangeBit) != 0 ? '-' : '/';
  if ((record.fields & FW_EXCLUSION_IPV6) != 0) {
    appendAddress(text, record.*end.address);
    text += separator;
    appendAddress(text, record.*end.addressEnd);
  } else {
    appendIpv4(record.*end.address, text);
    text += separator;
    appendIpv4(record.*end.address + 4, text);
  }
  return true;
}

bool appendProtocols(const FlowExclusionEnd&, const FWFlowExclusion_& record, std::string& text) {
  if (!begins(record, FW_EXCLUSION_PROTOCOL, text)) return false;
  for (std::size_t i = 0; i < std::min<std::size_t>(record.protocolCount, sizeof record.protocols);
       ++i) {
    if (i != 0) text += ',';
    const std::uint8_t number = record.protocols[i];
    if (const char* const name = hostProtocolName(number)) {
      text += name;
    } else {
      appendDecimal(text, unsigned{number});
    }
  }
  return true;
}

bool appendPorts(const FlowExclusionEnd& end, const FWFlowExclusion_& record, std::string& text) {
  if (!begins(record, end.portBit, text)) return false;
  const std::uint16_t low = record.*end.port;
  const std::uint16_t high = record.*end.portEnd;
  appendDecimal(text, low);
  if (low < high) {
    text += '-';
    appendDecimal(text, high);
  }
  return true;
}

bool appendVnic(const FlowExclusionEnd& end, const FWFlowExclusion_& record, std::string& text) {
  char form[64] = "";
  if (begins(record, end.vnicBit, text)) {
    const auto index = static_cast<int>(std::uint32_t{record.*end.vnicIndex});
    uuid2vnicstr(record.*end.vnic, index, form, sizeof form);
  } else if (begins(record, end.vmBit, text)) {
    uuid2gfystr(record.*end.vnic, form, sizeof form);
  } else {
    return false;
  }
  text += form;
  return true;
}

struct Column {
  const FlowExclusionEnd& end;
  AppendField append;
  int width;
  const char* after = "";  // what follows a value in the table, which scripts that cut it know
};

constexpr Column kColumns[] = {
    {kExclusionSource, appendMacs, 36, " "},      {kExclusionDestination, appendMacs, 36, "|"},
    {kExclusionSource, appendEthertypes, 28},     {kExclusionSource, appendAddresses, 78},
    {kExclusionDestination, appendAddresses, 78}, {kExclusionSource, appendProtocols, 33},
    {kExclusionSource, appendPorts, 12},          {kExclusionDestination, appendPorts, 12},
    {kExclusionSource, appendVnic, 48},           {kExclusionDestination, appendVnic, 48},
};

constexpr const Column* kLast = std::end(kColumns) - 1;

}  // namespace

void PrintFlowExclusion(FlowExclusionPrint print, std::FILE* stream,
                        const FWFlowExclusion_& record) {
  std::string line;
  for (const Column& column : kColumns) {
    column.append(column.end, record, line);
    line += &column == kLast ? '\n' : '|';
  }
  print(stream, "%s", line.c_str());
}

void PrintLongFlowExclusionHeader(FlowExclusionPrint print, std::FILE* stream) {
  print(stream, "%s",
        "Source MAC Address                   "
        "Destination MAC Address              "
        "Ethertypes                   "
        "Source IP address                                                              "
        "Destination IP address                                                         "
        "IP Protocols                      "
        "Source Port  "
        "Dest Port    "
        "Source VNic/VM                                   "
        "Destination VNic/VM                              \n");
  std::string dashes;
  for (const Column& column : kColumns) {
    dashes.append(static_cast<std::size_t>(column.width), '-');
    dashes += ' ';
  }
  print(stream, "%s\n", dashes.c_str());
}

void PrintLongFlowExclusion(FlowExclusionPrint print, std::FILE* stream,
                            const FWFlowExclusion_& record) {
  std::string text;
  for (const Column& column : kColumns) {
    text.clear();
    const bool named = column.append(column.end, record, text);
    text += named ? column.after : "*";
    print(stream, "%-*.*s ", column.width, column.width, text.c_str());
  }
  print(stream, "\n");
}
