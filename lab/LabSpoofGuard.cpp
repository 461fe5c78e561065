// The spoof guard of a filter: commands 25 to 28.
#include "LabSpoofGuard.h"

#include "LabAddrSetCommands.h"
#include "LabFamily.h"

namespace TarnLab {

namespace {

using Context = const CommandContext&;

std::string macText(ConstBytes mac) {
  std::string text;
  for (const std::byte octet : mac) {
    text += format("%s%02x", text.empty() ? "" : ":", static_cast<unsigned>(octet));
  }
  return text;
}

/// The first few addresses; of a guard with many, how many there are.
std::string addressesText(ConstBytes addresses) {
  constexpr std::size_t shown = 8;
  const std::size_t count = addresses.size() / AddressRecord::size;
  std::string text;
  for (std::size_t i = 0; i < std::min(count, shown); ++i) {
    const ConstBytes address = part(addresses, i * AddressRecord::size, AddressRecord::size);
    text += (i == 0 ? "" : ", ") + AddressRecord::text(address);
  }
  return count > shown ? text + format(", ... (%zu addresses)", count) : text;
}

constexpr FlagSetting guarding{"spoofguard.on", "spoof guard is on"};
constexpr BytesSetting guarded{"spoofguard.mac", macText};  // without one, the filter's own
constexpr BytesSetting allowed{"spoofguard.addresses", addressesText};

constexpr Blob mac{0, 6, "mac", As::mac};
constexpr Bits enabled{6, 1, "enabled"};
constexpr U32 count{8, "addresses"};
constexpr std::size_t addressesAt = 12, most = 1024;

constexpr std::size_t macSize = 6;

/// The MAC address of the filter's NIC: the last octets of its machine's uuid, counted on by NIC.
ByteVector ownMac(Context context) {
  const ConstBytes record = context.host.record(context.target.index);
  std::string_view uuid = getText(record, FilterRecord::vmUuid, FilterRecord::vmUuidSize);
  ByteVector octets(macSize);
  for (std::size_t i = macSize; i-- > 0 && uuid.size() > 2; uuid.remove_suffix(3)) {
    const auto octet = parseNumber("0x" + std::string(uuid.substr(uuid.size() - 2)), 0xff);
    put8(octets, i, static_cast<std::uint8_t>(octet.value_or(0)));
  }
  const std::uint32_t index = get32(record, FilterRecord::vnicIndex);
  put8(octets, macSize - 1, static_cast<std::uint8_t>(get8(octets, macSize - 1) + index));
  return octets;
}

ByteVector macOf(Context context, const Settings& settings) {
  ByteVector stored = settings.get(guarded);
  return stored.size() == macSize ? stored : ownMac(context);
}

/// What is wrong with the addresses that a guard is to allow; empty when nothing is.
std::string addressFault(ConstBytes addresses, std::size_t sent) {
  for (std::size_t i = 0; i < sent; ++i) {
    const ConstBytes address = part(addresses, i * AddressRecord::size, AddressRecord::size);
    const unsigned type = get16(address, AddressRecord::type);
    std::string fault = AddressRecord::fault(address);
    if (fault.empty() && type != AddressRecord::ipv4 && type != AddressRecord::ipv6 &&
        type != AddressRecord::setName) {
      fault = "neither one IP address nor an address set";
    }
    if (!fault.empty()) return format("address %zu: ", i) + fault;
  }
  return "";
}

std::uint32_t create(Context context, Body& body) {
  const std::uint32_t sent = count.get(body);
  const ConstBytes addresses = body.bytes().subspan(addressesAt);
  // The room of one address is sent when there is none.
  if (addresses.size() != std::max<std::uint64_t>(sent, 1) * AddressRecord::size) {
    return context.refuse(Status::badMessage,
                          format("%u addresses in %zu bytes", sent, addresses.size()));
  }
  if (sent == 0 && !isZero(addresses)) {
    return context.refuse(Status::badMessage, "an address that is not counted");
  }
  if (sent > most) return context.refuse(Status::invalidArgument, format("%u addresses", sent));
  const std::string fault = addressFault(addresses, sent);
  if (!fault.empty()) return context.refuse(Status::invalidAddress, fault);
  return changeSettings(context, [&](Settings& settings) {
    settings.set(guarding, true);
    settings.set(guarded, mac.get(body));
    settings.set(allowed, addresses.first(sent * AddressRecord::size));
    return Status::ok;
  });
}

std::uint32_t destroy(Context context, Body& body) {
  return changeSettings(context, [&](Settings& settings) -> std::uint32_t {
    const ByteVector stored = macOf(context, settings);
    const ConstBytes wanted = mac.get(body);
    if (settings.get(guarded).empty() && settings.get(allowed).empty()) {
      return context.refuse(Status::noAddress, "there is no spoof guard");
    }
    if (!isZero(wanted) && macText(wanted) != macText(stored)) {
      return context.refuse(Status::noAddress, "the spoof guard is of " + macText(stored));
    }
    settings.set(guarding, false);
    settings.set(guarded, ConstBytes());
    settings.set(allowed, ConstBytes());
    return Status::ok;
  });
}

/// Puts a spoof guard down as it is answered, without its addresses.
template <typename Target>
void putGuard(Context context, const Settings& settings, ConstBytes addresses, Target&& target) {
  mac.put(target, macOf(context, settings));
  enabled.put(target, settings.get(guarding) ? 1 : 0);
  count.put(target, static_cast<std::uint32_t>(addresses.size() / AddressRecord::size));
}

std::uint32_t check(Context context, Body& body) {
  if (count.get(body) != 1) {
    return context.refuse(Status::badMessage, format("%u spoof guards", count.get(body)));
  }
  const Settings settings = settingsOf(context);
  const ByteVector addresses = settings.get(allowed);
  putGuard(context, settings, addresses, body);
  copyRecord(body.reply(addressesAt, addresses.size()), addresses);
  return Status::ok;
}

// The seven counters, in the order of the reply.
constexpr U64 l3Drop{0, "l3 drop"}, l2Drop{8, "l2 drop"}, invalidArp{16, "invalid arp"},
    unknownArp{24, "unknown arp"}, badMacArp{32, "bad MAC arp"}, badIpArp{40, "bad IP arp"},
    goodArp{48, "good arp"};

/// A guard that is off has counted nothing.
std::uint32_t statistics(Context context, Body& body) {
  const bool on = settingsOf(context).get(guarding);
  const std::uint64_t load = on ? context.host.load(context.target.index) : 0;
  l3Drop.put(body, 5 * load);
  l2Drop.put(body, 3 * load);
  invalidArp.put(body, load);
  unknownArp.put(body, 2 * load);
  badMacArp.put(body, 7 * load);
  badIpArp.put(body, 11 * load);
  goodArp.put(body, 101 * load);
  return Status::ok;
}

ByteVector addressRecord(unsigned type, std::initializer_list<unsigned> value) {
  ByteVector record(AddressRecord::size);
  put16(record, AddressRecord::type, static_cast<std::uint16_t>(type));
  std::size_t at = AddressRecord::value;
  for (const unsigned octet : value) put8(record, at++, static_cast<std::uint8_t>(octet));
  return record;
}

ByteVector setReference(std::string_view name) {
  ByteVector record = addressRecord(AddressRecord::setName, {});
  putText(record, AddressRecord::value, AddressRecord::nameSize, name);
  return record;
}

ByteVector joined(std::initializer_list<ByteVector> records) {
  ByteVector all;
  for (const ByteVector& record : records) all.insert(all.end(), record.begin(), record.end());
  return all;
}

/// The machine on a plain port group is guarded, by the filter of the agent for that. The other one
/// knows what the machine may send from and lets everything pass.
void fill(Context context) {
  const std::size_t index = context.target.index;
  if (context.host.isLogical(index)) return;
  const bool on = context.host.agent(index) == "kelpco-spoof.guard";
  const ByteVector ipv4 = addressRecord(AddressRecord::ipv4, {10, 20, 9, 14});
  const ByteVector ipv6 =
      addressRecord(AddressRecord::ipv6, {0xfd, 0, 0, 0x20, 0, 9, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x14});
  if (on) {
    SetHead head;
    head.what = SetHead::addrSet;
    head.type = 1;
    head.addressType = 1;
    head.counts[0] = 2;
    const ByteVector entries =
        joined({addressRecord(AddressRecord::ipv4, {10, 20, 9, 15}),
                addressRecord(AddressRecord::ipv4Cidr, {10, 20, 9, 32, 28})});
    head.entryBytes = entries.size();
    head.touch();
    AddrSets::sets.save(context, "backup-addresses", head, entries);
  }
  changeSettings(context, [&](Settings& settings) {
    settings.set(guarding, on);
    settings.set(allowed, joined({ipv4, ipv6, setReference("backup-addresses")}));
    return Status::ok;
  });
}

constexpr List sent{
    .record = &AddrSets::addresses, .inRequest = true, .count = count, .at = addressesAt};
constexpr List returned{.record = &AddrSets::addresses, .count = count, .at = addressesAt};

constexpr CommandKind commands[] = {
    {.number = 25,
     .least = addressesAt + AddressRecord::size,
     .answer = create,
     .request = {mac, Reserved{6, 2}, count},
     .list = sent},
    {.number = 26, .least = 8, .answer = destroy, .request = {mac, Reserved{6, 2}}},
    {.number = 27,
     .least = addressesAt,
     .answer = check,
     .request = {Reserved{0, 8}, count, Reserved{12, most* AddressRecord::size}},
     .reply = {mac, enabled, count},
     .list = returned},
    {.number = 28,
     .least = 56,
     .answer = statistics,
     .request = {Reserved{0, 56}},
     .reply = {l3Drop, l2Drop, invalidArp, unknownArp, badMacArp, badIpArp, goodArp}},
};

constexpr Setting settings[] = {guarding, guarded, allowed};

}  // namespace

constinit const Family spoofGuardFamily{.commands = commands, .settings = settings, .fill = fill};

ByteVector spoofGuardOf(const Store& store, const Host& host, std::size_t index) {
  const SelectedFilter target{SelectorMatch::filter, index, host.folderOf(index)};
  JournalEntry unwritten;
  const CommandContext context{store, host, target, unwritten};
  const Settings now = settingsOf(context);
  const ByteVector addresses = now.get(allowed);
  ByteVector record(addressesAt);
  putGuard(context, now, addresses, Bytes(record));
  record.insert(record.end(), addresses.begin(), addresses.end());
  return record;
}

std::string spoofGuardText(ConstBytes record) {
  std::string text = macText(mac.get(record)) + (enabled.get(record) != 0 ? ", on" : ", off");
  for (ConstBytes rest = record.subspan(addressesAt); rest.size() >= AddressRecord::size;
       rest = rest.subspan(AddressRecord::size)) {
    text += "\n  " + AddressRecord::text(rest.first(AddressRecord::size));
  }
  return text;
}

}  // namespace TarnLab
