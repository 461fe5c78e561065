// What the address sets of a filter are set to: sharing, statistics, and the mark of one address.
#include "LabAddrSetCommands.h"
#include "LabFamily.h"

namespace TarnLab {

namespace {

using AddrSets::sets;
using Context = const CommandContext&;

constexpr FlagSetting shared{"addrsets.shared", "address sets are shared"};
constexpr FlagSetting statistics{"addrsets.statistics", "statistics of address sets are kept"};

constexpr Bits enable{0, 0xff, "enable"};
constexpr U32 enabled{0, "enabled"};

std::uint32_t configShared(Context context, Body& body) {
  if (context.target.match != SelectorMatch::filter) {
    return context.refuse(Status::notSupported, "sharing is set for a filter");
  }
  return changeSettings(context, [&](Settings& settings) {
    settings.set(shared, (enable.get(body) & 1) != 0);
    return Status::ok;
  });
}

std::uint32_t getShared(Context context, Body& body) {
  enabled.put(body, settingsOf(context).get(shared) ? 1 : 0);
  return Status::ok;
}

// The configuration of statistics and marks, 194 bytes.
constexpr U32 operation{0, "operation"}, component{42, "component"};
constexpr Name name{4, AddrSets::nameSize, "name", "address set"};
constexpr Blob address{46, 16, "address"};
constexpr Reserved addressRest{62, 124};
constexpr U32 first{186, "first"}, second{190, "second"}, before{186, "old"}, after{190, "new"};

// Operation 3 takes the choice for a set away again.
constexpr std::uint32_t enableStatistics = 1, disableStatistics = 2, showStatistics = 4,
                        setValid = 5, clearValid = 6;
constexpr std::uint32_t isUnset = 0, isEnabled = 1, isDisabled = 2;

/// The place of an address of that type in the set, or its count when the set does not hold it.
std::size_t placeOfAddress(const SetFile& set, unsigned wantedType, ConstBytes wanted) {
  const std::size_t count = set.head().counts[0];
  for (std::size_t i = 0; i < count; ++i) {
    const ConstBytes entry = part(set.entries(), i * AddressRecord::size, AddressRecord::size);
    const unsigned type = get16(entry, AddressRecord::type);
    const std::size_t size = type == AddressRecord::ipv4 ? 4 : 16;
    if (type == wantedType && std::memcmp(&entry[AddressRecord::value], wanted.data(), size) == 0)
      return i;
  }
  return count;
}

std::uint32_t mark(Context context, Body& body, const SetFile& set) {
  const std::uint32_t type = component.get(body);
  const ConstBytes wanted = address.get(body);
  if ((type != AddressRecord::ipv4 && type != AddressRecord::ipv6) ||
      (type == AddressRecord::ipv4 && !isZero(wanted.subspan(4)))) {
    return context.refuse(Status::invalidAddress, format("address of type %u", type));
  }
  const std::size_t place = placeOfAddress(set, type, wanted);
  if (place == set.head().counts[0]) {
    return context.refuse(Status::noAddress, "the address set does not hold the address");
  }
  ByteVector marks(set.marks().begin(), set.marks().end());
  before.put(body, get8(marks, place));
  put8(marks, place, operation.get(body) == setValid ? 1 : 0);
  after.put(body, get8(marks, place));
  sets.save(context, name.get(body), set.head(), set.entries(), marks);
  return Status::ok;
}

/// Switches the statistics of one set, or of the filter when none is named.
std::uint32_t switchStatistics(Context context, Body& body, const SetFile* set) {
  std::uint32_t choice = isUnset;
  if (operation.get(body) == enableStatistics) choice = isEnabled;
  if (operation.get(body) == disableStatistics) choice = isDisabled;
  if (set != nullptr) {
    SetHead head = set->head();
    before.put(body, head.statistics);
    head.statistics = choice;
    sets.save(context, name.get(body), head, set->entries(), set->marks());
    after.put(body, choice);
    return Status::ok;
  }
  return changeSettings(context, [&](Settings& settings) {
    before.put(body, settings.get(statistics) ? 1 : 0);
    settings.set(statistics, choice == isEnabled);
    after.put(body, settings.get(statistics) ? 1 : 0);
    return Status::ok;
  });
}

std::uint32_t configureSet(Context context, Body& body, const SetFile* set) {
  if (operation.get(body) > showStatistics) return mark(context, body, *set);
  if (operation.get(body) != showStatistics) return switchStatistics(context, body, set);
  before.put(body, settingsOf(context).get(statistics) ? 1 : 0);
  after.put(body, set != nullptr ? set->head().statistics : 0);
  return Status::ok;
}

std::uint32_t configure(Context context, Body& body) {
  const std::uint32_t wanted = operation.get(body);
  if (wanted < enableStatistics || wanted > clearValid) {
    return context.refuse(Status::invalidArgument, format("operation %u", wanted));
  }
  const std::string_view called = name.get(body);
  if (called.empty() && wanted <= showStatistics) return configureSet(context, body, nullptr);
  return withSet(context, sets, called,
                 [&](const SetFile& set) { return configureSet(context, body, &set); });
}

constexpr CommandKind commands[] = {
    {.number = 44,
     .scope = CommandScope::sets,
     .least = 4,
     .answer = configShared,
     .request = {enable}},
    {.number = 45,
     .scope = CommandScope::sets,
     .least = 4,
     .answer = getShared,
     .reply = {enabled}},
    {.number = 46,
     .scope = CommandScope::sets,
     .least = 194,
     .answer = configure,
     .request = {operation, name, component, address, addressRest, first, second},
     .reply = {before, after}},
};

constexpr Setting settings[] = {shared, statistics};

}  // namespace

constinit const Family addrSetConfigFamily{.commands = commands, .settings = settings};

}  // namespace TarnLab
