// The commands on connections, which are the active flows of a filter.
#include "LabConnectionAttributes.h"
#include "LabFamily.h"
#include "LabFlowFile.h"

namespace TarnLab {

namespace {

using Context = const CommandContext&;

std::uint32_t connectionsOf(const std::optional<FlowFile>& file) {
  return file ? file->count(activeGroup) : 0;
}

// Command 23: how many there are.
constexpr U32 found{4, "count"};

std::uint32_t count(Context context, Body& body) {
  found.put(body, connectionsOf(FlowFile::open(context.store, context.target.folder)));
  return Status::ok;
}

// Command 24: a page of them, from an id on.
namespace Page {
constexpr U8 version{0, "version"};
constexpr Net64 cursor{4, "cursor"};
constexpr U32 max{12, "max"}, returned{16, "returned"}, room{28, "room"};
constexpr RecordKind flow{FlowRecord::size, FlowRecord::text};
constexpr List list{.record = &flow, .count = returned, .at = 32};
}  // namespace Page

std::uint32_t page(Context context, Body& body) {
  const std::uint32_t most = Page::max.get(body);
  if (Page::version.get(body) != 1) {
    return context.refuse(Status::badMessage,
                          format("connections of version %u", Page::version.get(body)));
  }
  if (most > (body.size() - Page::list.at) / FlowRecord::size ||
      Page::room.get(body) != Page::list.at + std::uint64_t{most} * FlowRecord::size) {
    return context.refuse(Status::badMessage,
                          format("%u connections in %u bytes of room", most, Page::room.get(body)));
  }
  std::uint32_t records = 0;
  if (const auto file = FlowFile::open(context.store, context.target.folder)) {
    const FlowRules rules(context.store, context.target.folder);
    for (std::size_t i = file->placeOfId(Page::cursor.get(body));
         i < file->count(activeGroup) && records < most; ++i, ++records) {
      const ConstBytes flow = file->record(activeGroup, i);
      const Bytes place = body.reply(Page::list.at + records * FlowRecord::size, FlowRecord::size);
      copyRecord(place, flow);
      FlowRecord::rule.put(place, rules.ruleOf(flow));
    }
  }
  Page::returned.put(body, records);
  return Status::ok;
}

/// Sets the connections that are chosen, which their flag S says from then on. Returns their
/// number.
template <typename Choice>
std::uint32_t setThose(Context context, Choice isChosen) {
  const auto file = FlowFile::open(context.store, context.target.folder);
  if (!file) return 0;
  FlowGroups groups = file->copy();
  std::uint32_t set = 0;
  for (Bytes rest = groups[activeGroup]; !rest.empty(); rest = rest.subspan(FlowRecord::size)) {
    if (!isChosen(ConstBytes(rest))) continue;
    ++set;
    FlowRecord::flags.put(
        rest, static_cast<std::uint8_t>(FlowRecord::flags.get(rest) | FlowRecord::flagS));
  }
  if (set > 0) FlowFile::save(context.store, context.target.folder, groups);
  return set;
}

// Command 37: sets those of a list.
namespace Wanted {
constexpr std::size_t size = 40;
constexpr Blob source{0, 16, "source"}, destination{16, 16, "destination"};
constexpr Net16 sourcePort{32, "source port"}, destinationPort{34, "destination port"};
constexpr U8 flags{36, "flags"};
constexpr Reserved zero{37, 2, "connection"};
constexpr U8 protocol{39, "protocol"};
constexpr unsigned ipv6 = 1, directionShift = 1, flagsKnown = 7;

bool isIpv6(ConstBytes entry) { return (flags.get(entry) & ipv6) != 0; }
unsigned direction(ConstBytes entry) { return flags.get(entry) >> directionShift; }

/// The bytes of an address that the family uses.
ConstBytes addressIn(ConstBytes entry, const Blob& address) {
  return address.get(entry).first(isIpv6(entry) ? 16 : 4);
}

/// A connection without a protocol, as the configuration language makes it, has its ports in host
/// order.
unsigned portIn(ConstBytes entry, const Net16& port) {
  return protocol.get(entry) == 0 ? get16(entry, port.offset) : port.get(entry);
}

std::string fault(ConstBytes entry) {
  if (std::string reserved = reservedFault({zero}, entry, ""); !reserved.empty()) return reserved;
  if ((flags.get(entry) & ~flagsKnown) != 0 || direction(entry) > FlowRecord::out) {
    return format("connection with flags %u", flags.get(entry));
  }
  for (const Blob& address : {source, destination}) {
    if (!isIpv6(entry) && !isZero(address.get(entry).subspan(4))) {
      return "connection with an IPv4 address of more than 4 bytes";
    }
  }
  return "";
}

/// Every address is what an entry with the address of all ones is for; no port, direction or
/// protocol is any.
bool hasAddress(ConstBytes wanted, ConstBytes address) {
  const bool any = std::all_of(wanted.begin(), wanted.end(),
                               [](std::byte each) { return each == std::byte{0xff}; });
  return any || std::equal(wanted.begin(), wanted.end(), address.begin(), address.end());
}

template <typename Number>
bool hasNumber(unsigned wanted, Number number) {
  return wanted == 0 || wanted == number;
}

bool isFor(ConstBytes entry, ConstBytes flow) {
  if (FlowRecord::family.get(flow) != (isIpv6(entry) ? FlowRecord::ipv6 : FlowRecord::ipv4)) {
    return false;
  }
  const FlowRecord::Shape& shape = FlowRecord::shapeOf(flow);
  return hasAddress(addressIn(entry, source), shape.source.get(flow)) &&
         hasAddress(addressIn(entry, destination), shape.destination.get(flow)) &&
         hasNumber(portIn(entry, sourcePort), shape.sourcePort.get(flow)) &&
         hasNumber(portIn(entry, destinationPort), shape.destinationPort.get(flow)) &&
         hasNumber(direction(entry), FlowRecord::direction.get(flow)) &&
         hasNumber(protocol.get(entry), FlowRecord::protocol.get(flow));
}

std::string text(ConstBytes entry) {
  return format("%s port %u to %s port %u direction %u protocol %u",
                FlowRecord::addressText(addressIn(entry, source)).c_str(),
                portIn(entry, sourcePort),
                FlowRecord::addressText(addressIn(entry, destination)).c_str(),
                portIn(entry, destinationPort), direction(entry), protocol.get(entry));
}

constexpr RecordKind kind{size, text};
}  // namespace Wanted

constexpr U32 entries{0, "connections"}, result{4, "result"};
constexpr List entryList{.record = &Wanted::kind, .inRequest = true, .count = entries, .at = 8};

std::string listFault(ConstBytes list) {
  for (std::size_t at = 0; at < list.size(); at += Wanted::size) {
    const ConstBytes entry = part(list, at, Wanted::size);
    if (std::string fault = Wanted::fault(entry); !fault.empty()) return fault;
    if (at > 0 && std::memcmp(part(list, at - Wanted::size, Wanted::size).data(), entry.data(),
                              Wanted::size) >= 0) {
      return "connections out of their order";
    }
  }
  return "";
}

std::uint32_t setByList(Context context, Body& body) {
  const ConstBytes list = body.bytes().subspan(entryList.at);
  if (std::uint64_t{entries.get(body)} * Wanted::size != list.size()) {
    return context.refuse(Status::badMessage,
                          format("%u connections in %zu bytes", entries.get(body), list.size()));
  }
  if (const std::string fault = listFault(list); !fault.empty()) {
    return context.refuse(Status::badMessage, fault);
  }
  result.put(body, setThose(context, [list](ConstBytes flow) {
               for (std::size_t at = 0; at < list.size(); at += Wanted::size) {
                 if (Wanted::isFor(part(list, at, Wanted::size), flow)) return true;
               }
               return false;
             }));
  return Status::ok;
}

// Command 66: sets those that a filter describes in a way that only its maker knows. One that is
// all zero describes every connection.
constexpr Blob pattern{0, 80, "filter"};
constexpr U32 setByPattern{80, "count"};

std::uint32_t setByFilter(Context context, Body& body) {
  const bool all = isZero(pattern.get(body));
  setByPattern.put(body, setThose(context, [all](ConstBytes) { return all; }));
  return Status::ok;
}

// Commands 67 and 43: all of them.
constexpr U32 changed{0, "count"};

std::uint32_t setAll(Context context, Body& body) {
  changed.put(body, setThose(context, [](ConstBytes) { return true; }));
  return Status::ok;
}

std::uint32_t clearAll(Context context, Body& body) {
  const auto file = FlowFile::open(context.store, context.target.folder);
  changed.put(body, connectionsOf(file));
  if (connectionsOf(file) == 0) return Status::ok;
  FlowGroups groups = file->copy();
  groups[activeGroup].clear();
  FlowFile::save(context.store, context.target.folder, groups);
  return Status::ok;
}

constexpr CommandKind commands[] = {
    {.number = 23, .least = 12, .answer = count, .request = {Reserved{0, 16}}, .reply = {found}},
    {.number = 24,
     .least = 32,
     .answer = page,
     .request = {Page::version, Reserved{1, 3}, Page::cursor, Page::max, Reserved{16, 12},
                 Page::room},
     .reply = {Page::returned},
     .list = Page::list},
    {.number = 37,
     .least = 8,
     .answer = setByList,
     .request = {entries, Reserved{4, 4}},
     .reply = {result},
     .list = entryList},
    {.number = 43, .least = 4, .answer = clearAll, .request = {Reserved{0, 4}}, .reply = {changed}},
    {.number = 66,
     .least = 84,
     .answer = setByFilter,
     .request = {pattern, Reserved{80, 4}},
     .reply = {setByPattern}},
    {.number = 67, .least = 4, .answer = setAll, .request = {Reserved{0, 4}}, .reply = {changed}},
};

}  // namespace

bool describes(ConstBytes connection, ConstBytes flow) { return Wanted::isFor(connection, flow); }

constinit const Family connectionFamily{.commands = commands};

}  // namespace TarnLab
