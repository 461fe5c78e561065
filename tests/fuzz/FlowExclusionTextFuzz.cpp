// Definitions of flow exclusion. A text is refused with one error line, or is a record whose text
// is read as the same record again. An input with the size of a record is also printed as one.

#include <algorithm>
#include <cstring>
#include <string>

#include "FlowExclusionText.h"
#include "Fuzz.h"
#include "FuzzHost.h"

using namespace TarnFirewall;

namespace {

/// Characters of a row of the table with its line end.
constexpr std::size_t kRow = 420;

struct Parsed {
  bool ok = false;
  FWFlowExclusion_ record{};
  std::string err;
};

Parsed parse(std::string text) {
  const FuzzHost host({});
  Parsed parsed;
  parsed.ok = ParseFlowExclusion(text.data(), parsed.record);
  parsed.err = host.err();
  require(host.out().empty());
  return parsed;
}

std::string shortForm(const FWFlowExclusion_& record) {
  const FuzzHost host({});
  PrintFlowExclusion(std::fprintf, stdout, record);
  return host.out();
}

void requireRow(const FWFlowExclusion_& record) {
  const FuzzHost host({});
  PrintLongFlowExclusion(std::fprintf, stdout, record);
  const std::string row = host.out();
  require(row.size() == kRow && row.find('\n') == kRow - 1);
}

std::string field(const std::string& text, std::size_t place) {
  std::size_t begin = 0;
  for (; place > 0; --place) begin = text.find('|', begin) + 1;
  return text.substr(begin, text.find('|', begin) - begin);
}

/// Of two addresses the one that is IPv4 is printed as IPv6, as the kernel takes it.
bool hasBothFamilies(const std::string& text, const FWFlowExclusion_& record) {
  const std::uint32_t both = FW_EXCLUSION_SOURCE_ADDRESS | FW_EXCLUSION_DESTINATION_ADDRESS;
  if ((record.fields & both) != both) return false;
  const auto isIpv6 = [&](std::size_t place) {
    return field(text, place).find(':') != std::string::npos;
  };
  return isIpv6(3) != isIpv6(4);
}

/// A list of separators only is printed as nothing.
bool hasEmptyList(const FWFlowExclusion_& record) {
  return ((record.fields & FW_EXCLUSION_ETHERTYPE) != 0 && record.ethertypeCount == 0) ||
         ((record.fields & FW_EXCLUSION_PROTOCOL) != 0 && record.protocolCount == 0);
}

void requireSame(const FWFlowExclusion_& record) {
  std::string printed = shortForm(record);
  require(!printed.empty() && printed.back() == '\n');
  const std::string line = printed;
  printed.pop_back();
  const Parsed again = parse(printed);
  require(again.ok && again.err.empty());
  require(std::memcmp(&again.record, &record, sizeof record) == 0);
  require(shortForm(again.record) == line);
}

void onText(const std::string& text) {
  const Parsed parsed = parse(text);
  require(parsed.ok == parsed.err.empty());
  if (!parsed.ok) {
    require(parsed.err.compare(0, 7, "ERROR: ") == 0 && parsed.err.back() == '\n');
    return;
  }
  const FWFlowExclusion_& record = parsed.record;
  require(record.fields != 0 && (record.negated & ~record.fields) == 0);
  require(record.protocolCount <= 8 && record.ethertypeCount <= 4);
  requireRow(record);
  if (!hasBothFamilies(text, record) && !hasEmptyList(record)) requireSame(record);
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  onText(std::string(data, std::find(data, data + size, 0)));
  if (size == sizeof(FWFlowExclusion_)) {
    const auto record = loadRecord<FWFlowExclusion_>(data);
    const std::string line = shortForm(record);
    require(std::count(line.begin(), line.end(), '|') == 9 && line.find('\n') == line.size() - 1);
    requireRow(record);
  }
  return 0;
}
