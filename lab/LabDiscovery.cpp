// Requests 31, 32 and 34 of the firewall device: the addresses that a filter has discovered by
// listening to its machine, and how it listens.
#include <cerrno>

#include "LabAddressRecord.h"
#include "LabFamily.h"
#include "LabSetFile.h"

namespace TarnLab {

namespace {

// The body, 161 bytes.
constexpr std::size_t bodySize = 161, nameRoom = 99;
constexpr Name filter{0, 100, "filter", "filter"};
constexpr U8 operation{100, "operation"};
constexpr U32 ipv4Count{101, "ipv4"}, ipv6Count{105, "ipv6"};
constexpr Hex32 features{109, "features"};
constexpr U64 adds{113, "adds"}, deletes{121, "deletes"}, updated{129, "updated"};
constexpr U32 room{137, "room"};
constexpr U64 buffer{141, "buffer"};
constexpr U32 arpEntries{149, "arp entries"}, otherEntries{153, "other entries"},
    arpTimeout{157, "arp timeout"};

constexpr unsigned readEntries = 2, readAll = 3, readCounts = 4, setDiscovery = 5, clearAll = 34;
constexpr std::uint32_t everyFeature = 0xf, mostEntries = 128;

constexpr NumberSetting featuresSet{"discovery.features", everyFeature},
    arpEntriesSet{"discovery.arp.entries", 32}, arpTimeoutSet{"discovery.arp.timeout", 7200};

/// One entry, and the first record of the table: what was counted.
namespace Entry {
constexpr std::size_t size = 26;
constexpr U16 vlan{0, "vlan"};
constexpr Blob mac{2, 6, "mac", As::mac};
constexpr U8 isIpv4{8, "ipv4"};
constexpr Blob address{9, 16, "address"};
constexpr U8 source{25, "source"};
}  // namespace Entry

namespace Counted {
constexpr std::size_t size = 24;
constexpr U64 adds{0, "adds"}, deletes{8, "deletes"}, updated{16, "updated"};
}  // namespace Counted

std::string entryText(ConstBytes entry) {
  const ConstBytes address = Entry::address.get(entry);
  const bool ipv4 = Entry::isIpv4.get(entry) != 0;
  return "ip " + AddressRecord::ipText(ipv4 ? address.first(4) : address) + " " +
         fieldsText({Entry::vlan, Entry::mac, Entry::source}, entry);
}

std::string recordText(ConstBytes record) {
  if (record.size() == Entry::size) return entryText(record);
  return fieldsText({Counted::adds, Counted::deletes, Counted::updated}, record);
}

constexpr Table discovered{"discovered", Counted::size, recordText};

/// What a filter has discovered: the table without its first record, and that one.
struct Discovered {
  ByteVector counted = ByteVector(Counted::size);
  Table::Records entries;

  static Discovered load(const Store& store, const std::string& folder) {
    Discovered all;
    all.entries = discovered.load(store, folder);
    if (!all.entries.empty()) {
      all.counted = all.entries.front();
      all.entries.erase(all.entries.begin());
    }
    return all;
  }

  void save(const Store& store, const std::string& folder) const {
    Table::Records records = entries;
    records.insert(records.begin(), counted);
    discovered.save(store, folder, records);
  }
};

/// Hands the folder of the filter that the body names to `use`, for an errno.
template <typename Use>
int withFilter(Request& request, Body& body, std::initializer_list<unsigned> operations, Use use) {
  const unsigned wanted = operation.get(body);
  if (std::find(operations.begin(), operations.end(), wanted) == operations.end()) {
    return request.refuse(EINVAL, format("operation %u", wanted));
  }
  const auto index = request.host.find(filter.get(body), nameRoom);
  if (index) return use(request.host.folderOf(*index));
  return request.refuse(ENOENT, "there is no filter " + printable(filter.get(body)));
}

void putStatistics(const Store& store, const std::string& folder, const Discovered& all,
                   Body& body) {
  const Settings settings = Settings::load(store, folder);
  const auto arp = static_cast<std::uint32_t>(settings.get(arpEntriesSet));
  features.put(body, static_cast<std::uint32_t>(settings.get(featuresSet)));
  adds.put(body, Counted::adds.get(all.counted));
  deletes.put(body, Counted::deletes.get(all.counted));
  updated.put(body, Counted::updated.get(all.counted));
  if (operation.get(body) == readEntries) return;
  arpEntries.put(body, arp);
  otherEntries.put(body, mostEntries - arp);
  arpTimeout.put(body, static_cast<std::uint32_t>(settings.get(arpTimeoutSet)));
}

/// Writes as many entries as the buffer of the body has room for, and counts those.
int writeEntries(Request& request, Body& body, Table::Records& entries) {
  if (room.get(body) % Entry::size != 0) {
    return request.refuse(EINVAL, format("buffer of %u bytes", room.get(body)));
  }
  entries.resize(std::min<std::size_t>(entries.size(), room.get(body) / Entry::size));
  ByteVector bytes;
  for (const ByteVector& entry : entries) bytes.insert(bytes.end(), entry.begin(), entry.end());
  return request.writeBuffer(buffer.get(body), bytes);
}

int readDiscovered(Request& request, Body& body) {
  return withFilter(request, body, {readEntries, readAll, readCounts}, [&](const auto& folder) {
    Discovered all = Discovered::load(request.store, folder);
    if (operation.get(body) != readCounts) {
      if (const int error = writeEntries(request, body, all.entries); error != 0) return error;
    }
    const auto ipv4 = std::count_if(all.entries.begin(), all.entries.end(), [](const auto& entry) {
      return Entry::isIpv4.get(entry) != 0;
    });
    ipv4Count.put(body, static_cast<std::uint32_t>(ipv4));
    ipv6Count.put(
        body, static_cast<std::uint32_t>(all.entries.size()) - static_cast<std::uint32_t>(ipv4));
    putStatistics(request.store, folder, all, body);
    return 0;
  });
}

/// What was discovered before stays, whatever is enabled from now on.
int configure(Request& request, Body& body) {
  return withFilter(request, body, {setDiscovery}, [&](const auto& folder) {
    if (features.get(body) > everyFeature) {
      return request.refuse(EINVAL, format("features 0x%x", features.get(body)));
    }
    if (arpEntries.get(body) > mostEntries ||
        otherEntries.get(body) != mostEntries - arpEntries.get(body)) {
      return request.refuse(EINVAL, format("%u entries by ARP and %u others", arpEntries.get(body),
                                           otherEntries.get(body)));
    }
    Settings settings = Settings::load(request.store, folder);
    settings.set(featuresSet, features.get(body));
    settings.set(arpEntriesSet, arpEntries.get(body));
    settings.set(arpTimeoutSet, arpTimeout.get(body));
    settings.save(request.store, folder);
    return 0;
  });
}

int clear(Request& request, Body& body) {
  return withFilter(request, body, {clearAll}, [&](const auto& folder) {
    Discovered all = Discovered::load(request.store, folder);
    Counted::deletes.put(Bytes(all.counted),
                         Counted::deletes.get(all.counted) + all.entries.size());
    Counted::updated.put(Bytes(all.counted), bootSeconds());
    all.entries.clear();
    all.save(request.store, folder);
    return 0;
  });
}

ByteVector entryOf(unsigned vlan, unsigned lastOctet, bool ipv4, unsigned source,
                   std::initializer_list<unsigned> address) {
  ByteVector entry(Entry::size);
  const unsigned octets[] = {0x00, 0x50, 0x56, 0x99, 0x2b, lastOctet};
  Entry::vlan.put(Bytes(entry), static_cast<std::uint16_t>(vlan));
  for (std::size_t i = 0; i < 6; ++i) put8(entry, 2 + i, static_cast<std::uint8_t>(octets[i]));
  Entry::isIpv4.put(Bytes(entry), ipv4 ? 1 : 0);
  std::size_t at = Entry::address.offset;
  for (const unsigned octet : address) put8(entry, at++, static_cast<std::uint8_t>(octet));
  Entry::source.put(Bytes(entry), static_cast<std::uint8_t>(source));
  return entry;
}

/// Each family with each of its sources, and with one that the other family has. So many more
/// were added than deleted as there are.
void fill(const CommandContext& context) {
  if (!context.host.isShowpiece(context.target.index)) return;
  Discovered all;
  all.entries = {
      entryOf(101, 0x26, true, 1, {10, 20, 1, 40}),
      entryOf(102, 0x27, true, 2, {10, 20, 1, 41}),
      entryOf(103, 0x28, true, 2, {10, 20, 1, 42}),
      entryOf(104, 0x29, true, 3, {10, 20, 1, 43}),
      entryOf(105, 0x26, false, 3, {0xfd, 0, 0, 0x20, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x40}),
      entryOf(106, 0x27, false, 4,
              {0xfe, 0x80, 0, 0, 0, 0, 0, 0, 2, 0x50, 0x56, 0xff, 0xfe, 0x99, 0x2b, 0x27}),
      entryOf(107, 0x28, false, 1, {0xfd, 0, 0, 0x20, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x42}),
  };
  const std::uint64_t deleted = 12;
  Counted::adds.put(Bytes(all.counted), deleted + all.entries.size());
  Counted::deletes.put(Bytes(all.counted), deleted);
  Counted::updated.put(Bytes(all.counted), std::uint64_t{5400});
  all.save(context.store, context.target.folder);
}

std::vector<std::string> entryLines(ConstBytes entries) {
  std::vector<std::string> lines;
  for (; entries.size() >= Entry::size; entries = entries.subspan(Entry::size)) {
    lines.push_back(entryText(entries.first(Entry::size)));
  }
  return lines;
}

constexpr RecordKind entryRecords{0, nullptr, {}, entryLines};

constexpr DirectKind requests[] = {
    {.device = Device::firewall,
     .number = 31,
     .title = "discovered addresses",
     .size = bodySize,
     .answer = readDiscovered,
     .request = {filter, operation, room},
     .reply = {ipv4Count, ipv6Count, features, adds, deletes, updated, arpEntries, otherEntries,
               arpTimeout},
     .list = {.record = &entryRecords, .at = bodySize}},
    {.device = Device::firewall,
     .number = 32,
     .title = "discovery of addresses",
     .size = bodySize,
     .answer = configure,
     .request = {filter, operation, Reserved{101, 8}, features, Reserved{113, 36}, arpEntries,
                 otherEntries, arpTimeout}},
    {.device = Device::firewall,
     .number = 34,
     .title = "clearing of discovered addresses",
     .size = bodySize,
     .answer = clear,
     .request = {filter, operation, Reserved{101, 60}}},
};

constexpr Setting settings[] = {featuresSet, arpEntriesSet, arpTimeoutSet};
constexpr Table tables[] = {discovered};

}  // namespace

constinit const Family discoveryFamily{
    .requests = requests, .settings = settings, .fill = fill, .tables = tables};

}  // namespace TarnLab
