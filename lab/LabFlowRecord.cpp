#include "LabFlowRecord.h"

#include <arpa/inet.h>

#include "LabText.h"

namespace TarnLab {

namespace FlowRecord {

namespace {

const char* kindText(unsigned of) {
  static constexpr const char* words[] = {"invalid", "active",  "inactive",
                                          "drop",    "L2 pass", "L2 drop"};
  return of < std::size(words) ? words[of] : words[0];
}

std::string endpoints(ConstBytes record) {
  const Shape& shape = shapeOf(record);
  const bool ports = protocol.get(record) == tcp || protocol.get(record) == udp;
  const auto end = [&](const Blob& address, const Net16& port) {
    const std::string text = addressText(address.get(record));
    return ports ? text + format(" port %u", port.get(record)) : text;
  };
  std::string text =
      end(shape.source, shape.sourcePort) + " to " + end(shape.destination, shape.destinationPort);
  if (!isZero(shape.translated.get(record))) {
    text += " as " + end(shape.translated, shape.translatedPort);
  }
  if (ports && shape.algFlowType.get(record) != 0) {
    text += format(", alg %u flow %u port %u", shape.algType.get(record),
                   shape.algFlowType.get(record), shape.algPort.get(record));
  }
  if (protocol.get(record) == tcp) {
    text +=
        format(", tcp %u:%u", shape.sourceState.get(record), shape.destinationState.get(record));
  }
  return text;
}

}  // namespace

std::string addressText(ConstBytes address) {
  char text[INET6_ADDRSTRLEN];
  const int domain = address.size() == 4 ? AF_INET : AF_INET6;
  return ::inet_ntop(domain, address.data(), text, sizeof text) != nullptr ? text : "?";
}

std::string text(ConstBytes record) {
  const auto number = [record](const Field& field) {
    return static_cast<unsigned long long>(numberOf(field, record));
  };
  std::string line = format("flow %llx %s protocol %llu ethertype %04llx rule %llu direction %llu",
                            number(id), kindText(kind.get(record)), number(protocol),
                            number(ethertype), number(rule), number(direction));
  line += format(" states %llu %llu flags %llu", number(firstState), number(secondState),
                 number(flags));
  if (isIp(record)) line += " from " + endpoints(record);
  return line + format(", bytes in %llu out %llu, packets in %llu out %llu, attributes %llu",
                       number(bytesIn), number(bytesOut), number(packetsIn), number(packetsOut),
                       number(attributeCount));
}

std::vector<std::string> texts(ConstBytes buffer) {
  std::vector<std::string> lines;
  ConstBytes rest = buffer.subspan(std::min(beforeRecords, buffer.size()));
  while (!rest.empty()) {
    const std::size_t step = rest.size() < size ? 0 : length.get(rest);
    if (step < size || step > rest.size()) {
      lines.emplace_back("? and more");
      break;
    }
    lines.push_back(text(rest.first(size)));
    rest = rest.subspan(step);
  }
  return lines;
}

}  // namespace FlowRecord

namespace FlowNumber {

namespace {
constexpr std::uint64_t base = 0x5c1e000000000000, firstOfFilter = 0x1001;
constexpr unsigned step = 3;
}  // namespace

std::uint64_t toId(std::size_t filter, std::uint32_t number) {
  return base + ((std::uint64_t{filter} + 1) << 32) + firstOfFilter + std::uint64_t{number} * step;
}

std::uint32_t ofId(std::uint64_t id) {
  const std::uint64_t low = id & 0xffffffff;
  return static_cast<std::uint32_t>(low < firstOfFilter ? 0 : (low - firstOfFilter) / step);
}

}  // namespace FlowNumber

}  // namespace TarnLab
