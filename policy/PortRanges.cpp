#include "PortRanges.h"

#include <algorithm>

#include "TarnFWProtocolSpecL4Port.h"
#include "TarnFWProtocolSpecL4PortRange.h"
#include "TarnFWProtocolSpecL4PortSet.h"

using namespace TarnFirewall;

namespace {

constexpr PortRange kAllPorts = {0, 0xffff};

PortRanges joined(PortRanges ports) {
  std::sort(ports.begin(), ports.end(),
            [](const PortRange& a, const PortRange& b) { return a.low < b.low; });
  PortRanges result;
  result.reserve(ports.size());
  for (const PortRange& range : ports) {
    if (!result.empty() && range.low <= result.back().high + 1) {
      result.back().high = std::max(result.back().high, range.high);
    } else {
      result.push_back(range);
    }
  }
  return result;
}

PortRanges others(const PortRanges& ports) {
  PortRanges result;
  unsigned int next = 0;
  for (const PortRange& range : ports) {
    if (range.low > next) {
      result.push_back(
          {static_cast<std::uint16_t>(next), static_cast<std::uint16_t>(range.low - 1)});
    }
    next = range.high + 1u;
  }
  if (next <= 0xffff) result.push_back({static_cast<std::uint16_t>(next), 0xffff});
  return result;
}

}  // namespace

std::optional<PortRange> onlyRangeOf(const FWPortBlock_& block) {
  const unsigned int kind = block.header.kind();
  if (kind == FW_SPEC_NONE) return kAllPorts;
  if (block.header.negated()) return std::nullopt;
  if (kind == FW_SPEC_L4_PORT) {
    const auto body = loadRecord<CTarnFWProtocolSpecL4Port::Body>(block.body);
    return PortRange{body.port, body.port};
  }
  if (kind == FW_SPEC_L4_PORT_RANGE) {
    const auto body = loadRecord<CTarnFWProtocolSpecL4PortRange::Body>(block.body);
    return PortRange{body.low, body.high};
  }
  return std::nullopt;
}

namespace {

PortRanges written(const FWPortBlock_& block) {
  FWPortBlock_ plain = block;
  plain.header.word = static_cast<std::uint16_t>(plain.header.word & ~0x4);
  if (const auto only = onlyRangeOf(plain)) return {*only};
  if (plain.header.kind() != FW_SPEC_L4_PORT_SET) return {kAllPorts};
  const auto body = loadRecord<CTarnFWProtocolSpecL4PortSet::Body>(block.body);
  PortRanges ports;
  const unsigned int count = body.count & 0xf;
  ports.reserve(count);
  for (unsigned int i = 0; i < count; ++i) {
    const bool range = (body.ranges >> i & 1) != 0 && i + 1 < count;
    ports.push_back({body.entries[i], body.entries[range ? i + 1 : i]});
    if (range) ++i;
  }
  return ports;
}

}  // namespace

PortRanges portsOf(const FWPortBlock_& block) {
  if (block.header.kind() == FW_SPEC_NONE) return {kAllPorts};
  PortRanges ports = joined(written(block));
  return block.header.negated() ? others(ports) : ports;
}

bool covers(const PortRanges& outer, const PortRanges& inner) {
  std::size_t at = 0;
  for (const PortRange& range : inner) {
    while (at < outer.size() && outer[at].high < range.low) ++at;
    if (at == outer.size() || outer[at].low > range.low || outer[at].high < range.high)
      return false;
  }
  return true;
}
