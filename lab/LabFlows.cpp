// Request 22 of the firewall device: the flows of a filter.
#include <cerrno>

#include "LabConnectionAttributes.h"
#include "LabFamily.h"
#include "LabFlowFile.h"
#include "LabSelector.h"

namespace TarnLab {

namespace {

// The body, 264 bytes.
constexpr std::size_t bodySize = 264;
constexpr Name agent{0, 100, "agent", "agent"}, filter{100, 64, "filter", "filter"};
constexpr Reserved selectorAgent{164, 32};
constexpr Bits selectorType{199, 15, "selector"};
constexpr U8 operation{200, "operation"}, flush{201, "flush"}, resetRtt{202, "reset rtt"},
    withAttributes{203, "with attributes"};
constexpr U32 room{204, "room"};
constexpr U64 buffer{208, "buffer"};
constexpr unsigned readCounts = 1, readRecords = 2;

/// What a group of flows amounts to; the bytes are those of the records with their attributes.
struct Amounts {
  U32 records, attributes, attributeBytes, bytes;
};
constexpr Amounts amounts[flowGroups] = {
    {{216, "active"}, {220, "active attributes"}, {224, "in bytes"}, {228, "of bytes"}},
    {{232, "inactive"}, {236, "inactive attributes"}, {240, "in bytes"}, {244, "of bytes"}},
    {{248, "drop"}, {252, "drop attributes"}, {256, "in bytes"}, {260, "of bytes"}},
};

constexpr FieldList request{agent,
                            filter,
                            selectorAgent,
                            selectorType,
                            operation,
                            flush,
                            resetRtt,
                            withAttributes,
                            room,
                            amounts[0].records,
                            amounts[1].records,
                            amounts[2].records};
constexpr FieldList reply{
    amounts[0].records, amounts[0].attributes, amounts[0].attributeBytes, amounts[0].bytes,
    amounts[1].records, amounts[1].attributes, amounts[1].attributeBytes, amounts[1].bytes,
    amounts[2].records, amounts[2].attributes, amounts[2].attributeBytes, amounts[2].bytes};

constexpr RecordKind flows{.lines = FlowRecord::texts};

/// Whether the filter's flags switch the collection of such flows off.
bool isCollected(std::uint32_t flowFlags, unsigned kind) {
  constexpr std::uint32_t none = 0x20;
  constexpr std::uint32_t ofKind[] = {0, 0x10, 0x08, 0x04, 0x01, 0x02};
  return (flowFlags & (none | (kind < std::size(ofKind) ? ofKind[kind] : 0))) == 0;
}

std::string fault(const Body& body) {
  if (const unsigned type = selectorType.get(body);
      type != Selector::filter && type != Selector::vif) {
    return format("flows of a selector of type %u", type);
  }
  const unsigned wanted = operation.get(body);
  if (wanted != readCounts && wanted != readRecords) return format("flow operation %u", wanted);
  for (const U8& flag : {flush, resetRtt, withAttributes}) {
    if (flag.get(body) > 1) return std::string(flag.name) + format(" %u", flag.get(body));
  }
  if (wanted == readCounts) {
    if (room.get(body) != 0) return format("count of flows with %u bytes of room", room.get(body));
    const std::size_t at = amounts[0].records.offset;
    return isZero(part(body.bytes(), at, bodySize - at)) ? "" : "count of flows with counts set";
  }
  return room.get(body) >= FlowRecord::beforeRecords ? ""
                                                     : format("room of %u bytes", room.get(body));
}

SelectedFilter select(const Request& asked, const Body& body) {
  ByteVector selector(body.bytes().begin() + filter.offset,
                      body.bytes().begin() + filter.offset + Selector::size);
  putText(selector, 64, 32, agent.get(body));
  return asked.host.select(selector);
}

/// Puts the flows together that a request is for.
class Collector {
 public:
  Collector(const Request& asked, const Body& body, const SelectedFilter& target)
      : file_(FlowFile::open(asked.store, target.folder)),
        rules_(asked.store, target.folder),
        flags_(get32(asked.host.record(target.index), FilterRecord::flowFlags)),
        attributes_(withAttributes.get(body) != 0 ? std::optional<ConnectionAttributes>(
                                                        std::in_place, asked.store, target.folder)
                                                  : std::nullopt),
        fetched_(FlowRecord::beforeRecords) {}

  /// Writes the amounts of a group: all of it, or as many records as are wanted and have room.
  void collect(Body& body, std::size_t group, std::uint32_t wanted, std::size_t limit) {
    std::uint32_t records = 0;
    FlowAttributes::Size sum;
    const std::size_t before = fetched_.size();
    for (std::uint32_t i = 0; file_ && i < file_->count(group) && records < wanted; ++i) {
      const ConstBytes flow = file_->record(group, i);
      if (!isCollected(flags_, FlowRecord::kind.get(flow))) continue;
      const std::size_t at = fetched_.size();
      const FlowAttributes::Size size = append(flow);
      if (fetched_.size() > limit) {
        fetched_.resize(at);
        break;
      }
      taken_[group].push_back(i);
      ++records;
      sum.count += size.count;
      sum.bytes += size.bytes;
    }
    const std::size_t bytes = fetched_.size() - before;
    amounts[group].records.put(body, records);
    amounts[group].attributes.put(body, sum.count);
    amounts[group].attributeBytes.put(body, static_cast<std::uint32_t>(sum.bytes));
    amounts[group].bytes.put(body, static_cast<std::uint32_t>(bytes));
  }

  ConstBytes fetched() const { return fetched_; }

  /// What a request changes by reading. Flushed flows are gone; connections are no less there.
  void finish(const Request& asked, const SelectedFilter& target, bool flushes, bool resets) const {
    const bool flushed = flushes && !(taken_[inactiveGroup].empty() && taken_[dropGroup].empty());
    if (!file_ || (!flushed && !resets)) return;
    FlowGroups groups = file_->copy();
    if (resets) {
      for (ByteVector& group : groups) resetRoundTrips(group);
    }
    if (flushed) {
      for (const std::size_t group : {inactiveGroup, dropGroup}) {
        removeTaken(groups[group], taken_[group]);
      }
    }
    FlowFile::save(asked.store, target.folder, groups);
  }

 private:
  FlowAttributes::Size append(ConstBytes flow) {
    const std::size_t at = fetched_.size();
    fetched_.insert(fetched_.end(), flow.begin(), flow.end());
    FlowRecord::rule.put(Bytes(fetched_).subspan(at), rules_.ruleOf(flow));
    if (!attributes_) return {};
    const FlowAttributes::Size size = attributes_->append(fetched_, flow);
    const Bytes record = Bytes(fetched_).subspan(at);
    FlowRecord::length.put(record, static_cast<std::uint16_t>(record.size()));
    FlowRecord::attributeCount.put(record, static_cast<std::uint8_t>(size.count));
    return size;
  }

  static void resetRoundTrips(ByteVector& group) {
    for (Bytes rest = group; !rest.empty(); rest = rest.subspan(FlowRecord::size)) {
      const bool measured =
          FlowRecord::isIp(rest) && FlowRecord::protocol.get(rest) == FlowRecord::tcp;
      if (measured) FlowRecord::shapeOf(rest).roundTrip.put(rest, 0);
    }
  }

  static void removeTaken(ByteVector& group, const std::vector<std::uint32_t>& taken) {
    ByteVector left;
    auto next = taken.begin();
    for (std::uint32_t i = 0; i < group.size() / FlowRecord::size; ++i) {
      if (next != taken.end() && *next == i) {
        ++next;
        continue;
      }
      const ConstBytes record =
          part(ConstBytes(group), std::size_t{i} * FlowRecord::size, FlowRecord::size);
      left.insert(left.end(), record.begin(), record.end());
    }
    group = std::move(left);
  }

  std::optional<FlowFile> file_;
  FlowRules rules_;
  std::uint32_t flags_;
  std::optional<ConnectionAttributes> attributes_;
  ByteVector fetched_;  // what stands before the records, and the records
  std::array<std::vector<std::uint32_t>, flowGroups> taken_;
};

int answer(Request& asked, Body& body) {
  if (const std::string wrong = fault(body); !wrong.empty()) return asked.refuse(EINVAL, wrong);
  const SelectedFilter target = select(asked, body);
  if (target.match != SelectorMatch::filter) {
    return asked.refuse(ENOENT, "there is no filter " + printable(filter.get(body)) + " of " +
                                    printable(agent.get(body)));
  }
  const bool reading = operation.get(body) == readRecords;
  const std::size_t limit = reading ? room.get(body) : ~std::size_t{0};
  Collector collector(asked, body, target);
  for (std::size_t group = 0; group < flowGroups; ++group) {
    const std::uint32_t wanted = reading ? amounts[group].records.get(body) : ~std::uint32_t{0};
    collector.collect(body, group, wanted, limit);
  }
  if (!reading) return 0;
  if (const int error = asked.writeBuffer(buffer.get(body), collector.fetched())) return error;
  collector.finish(asked, target, flush.get(body) == 1, resetRtt.get(body) == 1);
  return 0;
}

/// How many flows a filter of a fresh host has. One that has not seen any traffic usually has none.
std::uint32_t freshCount(const Host& host, std::size_t index) {
  if (host.flows() != Host::usualFlows) return host.flows();
  return host.load(index) == 0 ? 0 : 400 + get16(host.record(index), FilterRecord::hash) % 100;
}

void fill(const CommandContext& context) {
  const std::size_t index = context.target.index;
  const std::uint32_t count = freshCount(context.host, index);
  if (count == 0) return;
  FlowFile::save(context.store, context.target.folder, makeFlows(index, count));
}

constexpr DirectKind requests[] = {
    {.device = Device::firewall,
     .number = 22,
     .title = "flows",
     .size = bodySize,
     .answer = answer,
     .request = request,
     .reply = reply,
     .list = {.record = &flows, .at = bodySize}},
};

}  // namespace

constinit const Family flowFamily{.requests = requests, .fill = fill};

}  // namespace TarnLab
