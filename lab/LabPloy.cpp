// The insertion device: the tables of the data path of service insertion, and the statistics of
// service machines. Nothing of this lab changes them.
#include <cerrno>

#include "LabFamily.h"

namespace TarnLab {

namespace {

// --- Entries of the tables

/// 24 bits in network order, and a byte that says nothing.
struct Spi : Blob {
  constexpr Spi(std::uint32_t at, const char* called) : Blob(at, 4, called) {}
  void put(Bytes record, std::uint32_t value) const {
    for (std::uint32_t i = 0; i < 3; ++i) {
      put8(record, offset + i, static_cast<std::uint8_t>(value >> (8 * (2 - i))));
    }
    put8(record, offset + 3, 0xaa);
  }
  std::string text(ConstBytes record) const {
    return format("%s %u", name,
                  unsigned{get8(record, offset)} << 16 | unsigned{get8(record, offset + 1)} << 8 |
                      unsigned{get8(record, offset + 2)});
  }
};

namespace Service {
constexpr std::size_t size = 84;
constexpr Text uuid{0, 37, "uuid"};
constexpr Spi forwardSpi{37, "forward spi"}, reverseSpi{64, "reverse spi"};
constexpr U32 forwardSi{41, "si"}, forwardScid{45, "scid"}, reverseSi{68, "si"},
    reverseScid{72, "scid"};
constexpr Blob forwardMac{49, 6, "mac", As::mac}, reverseMac{58, 6, "mac", As::mac};
constexpr U8 policy{79, "policy"};

std::string text(ConstBytes entry) {
  return std::string(uuid.get(entry)) + " " + forwardSpi.text(entry) + ", " +
         fieldsText({forwardSi, forwardScid, forwardMac}, entry) + ", " + reverseSpi.text(entry) +
         ", " + fieldsText({reverseSi, reverseScid, reverseMac, policy}, entry);
}
}  // namespace Service

namespace Nsh {
constexpr std::size_t size = 17;
constexpr Spi spi{0, "spi"};
constexpr U32 si{4, "si"};
constexpr Blob mac{9, 6, "mac", As::mac};
constexpr U8 type{15, "type"}, mode{16, "mode"};

std::string text(ConstBytes entry) {
  return spi.text(entry) + ", " + fieldsText({si, mac, type, mode}, entry);
}
}  // namespace Nsh

namespace Proxy {
constexpr std::size_t size = 10;
constexpr Blob mac{0, 6, "mac", As::mac};
constexpr U8 native{6, "native"}, decrypts{7, "decrypts"}, liveness{8, "liveness"},
    redirects{9, "redirects"};

std::string text(ConstBytes entry) {
  return fieldsText({mac, native, decrypts, liveness, redirects}, entry);
}
}  // namespace Proxy

constexpr RecordKind serviceEntries{Service::size, Service::text}, nshEntries{Nsh::size, Nsh::text},
    proxyEntries{Proxy::size, Proxy::text};

constexpr Table services{"service-table", Service::size, Service::text},
    nsh{"nsh-table", Nsh::size, Nsh::text}, proxies{"proxy-table", Proxy::size, Proxy::text};

// --- Their requests

constexpr std::size_t headSize = 16, countSize = 8;
constexpr U64 count{0, "count"}, wanted{0, "wanted"};

template <const Table& table>
int countEntries(Request& request, Body& /*body*/) {
  count.put(Bytes(request.output), table.load(request.store, hostTableFolder).size());
  return 0;
}

/// The output needs room for all that are wanted, also for those that there are not.
template <const Table& table>
int readEntries(Request& request, Body& body) {
  const Table::Records records = table.load(request.store, hostTableFolder);
  const std::uint64_t most = wanted.get(body);
  if (most > (request.output.size() - headSize) / table.least) {
    return request.refuse(EINVAL, format("room of %zu bytes", request.output.size()));
  }
  const auto there = static_cast<std::size_t>(std::min<std::uint64_t>(most, records.size()));
  count.put(Bytes(request.output), there);
  for (std::size_t i = 0; i < there; ++i) {
    copyRecord(part(Bytes(request.output), headSize + i * table.least, table.least), records[i]);
  }
  return 0;
}

std::string nothingAsked(ConstBytes /*input*/) { return ""; }

template <const Table& table>
constexpr DirectKind countKind(std::uint32_t number, const char* title) {
  return {.device = Device::serviceInsertion,
          .number = number,
          .title = title,
          .answer = countEntries<table>,
          .reply = {count},
          .output = countSize,
          .asked = nothingAsked};
}

template <const Table& table>
constexpr DirectKind readKind(std::uint32_t number, const char* title, const RecordKind& entry) {
  return {.device = Device::serviceInsertion,
          .number = number,
          .title = title,
          .size = countSize,
          .answer = readEntries<table>,
          .request = {wanted},
          .reply = {count},
          .list = {.record = &entry, .count = count, .at = headSize},
          .output = headSize};
}

// --- Statistics of service machines

constexpr std::size_t portSize = 4, words = 20, statsSize = 8 * words;
constexpr U32 port{0, "port"};

/// What the call gives for a port that is none of a service machine.
constexpr int noStatistics = 0xbad0003;

std::string machineText(ConstBytes record) {
  std::string text = fieldsText({port}, record) + ":";
  for (std::size_t i = 0; i < words; ++i) {
    text += format(" %llu", static_cast<unsigned long long>(get64(record, portSize + 8 * i)));
  }
  return text;
}

/// The port, and the words of its statistics.
constexpr Table machines{"service-machines", portSize + statsSize, machineText};

int readStatistics(Request& request, Body& body) {
  for (const ByteVector& machine : machines.load(request.store, hostTableFolder)) {
    if (port.get(machine) != port.get(body)) continue;
    copyRecord(part(Bytes(request.output), 0, statsSize), part(machine, portSize, statsSize));
    return 0;
  }
  request.entry.note = format("port %u is none of a service machine", port.get(body));
  request.result = noStatistics;
  return 0;
}

constexpr DirectKind requests[] = {
    {.device = Device::serviceInsertion,
     .number = 11,
     .title = "statistics of a service machine",
     .size = portSize,
     .answer = readStatistics,
     .request = {port},
     .output = statsSize},
    countKind<services>(12, "number of services"),
    readKind<services>(13, "services", serviceEntries),
    countKind<nsh>(14, "number of NSH entries"),
    readKind<nsh>(15, "NSH entries", nshEntries),
    countKind<proxies>(16, "number of proxies"),
    readKind<proxies>(17, "proxies", proxyEntries),
};

// --- The usual host

void putMac(Bytes record, const Blob& field, unsigned last) {
  const unsigned octets[] = {0x00, 0x50, 0x56, 0x99, 0x4c, last};
  for (std::size_t i = 0; i < 6; ++i) {
    put8(record, field.offset + i, static_cast<std::uint8_t>(octets[i]));
  }
}

/// The service of that place: every policy, and one that only another kernel has.
ByteVector serviceAt(std::uint32_t place) {
  ByteVector entry(Service::size);
  const Bytes it(entry);
  Service::uuid.put(it, format("7d1f02c4-93ab-4e50-8a6e-0050569%05x", 0x94c00 + place));
  Service::forwardSpi.put(it, 100 + place);
  Service::forwardSi.put(it, 255 - place);
  Service::forwardScid.put(it, 10 + place);
  putMac(it, Service::forwardMac, place);
  Service::reverseSpi.put(it, 0x10000 * place + 200);
  Service::reverseSi.put(it, 128 - place);
  Service::reverseScid.put(it, 1000 + place);
  putMac(it, Service::reverseMac, 0x80 + place);
  Service::policy.put(it, static_cast<std::uint8_t>(place <= 4 ? place - 1 : 9));
  return entry;
}

/// Every type with every mode, and those that only another kernel has.
ByteVector nshAt(std::uint32_t place) {
  ByteVector entry(Nsh::size);
  const Bytes it(entry);
  Nsh::spi.put(it, 100 + place);
  Nsh::si.put(it, 255 - place);
  putMac(it, Nsh::mac, place);
  Nsh::type.put(it, static_cast<std::uint8_t>(place <= 4 ? (place - 1) % 2 : 7));
  Nsh::mode.put(it, static_cast<std::uint8_t>(place <= 4 ? (place - 1) / 2 : 9));
  return entry;
}

/// Both words of every column.
ByteVector proxyAt(std::uint32_t place) {
  ByteVector entry(Proxy::size);
  const Bytes it(entry);
  const auto bit = [&](std::uint32_t which) {
    return static_cast<std::uint8_t>(place >> which & 1);
  };
  putMac(it, Proxy::mac, place);
  Proxy::native.put(it, bit(0));
  Proxy::decrypts.put(it, bit(1));
  Proxy::liveness.put(it, bit(2));
  Proxy::redirects.put(it, static_cast<std::uint8_t>(place == 3 ? 255 : 0));
  return entry;
}

/// The words are multiples of one number; nothing has come to the second machine yet.
ByteVector machineAt(std::uint32_t place) {
  constexpr std::uint32_t firstPort = 67108874;
  ByteVector record(portSize + statsSize);
  port.put(Bytes(record), firstPort + place);
  for (std::size_t i = 0; i < words; ++i) {
    put64(record, portSize + 8 * i, place == 1 ? 1009 * (i + 1) : 0);
  }
  return record;
}

void fill(const CommandContext& context) {
  if (!context.host.isShowpiece(context.target.index)) return;
  const auto make = [&](const Table& table, std::uint32_t most, ByteVector (*made)(std::uint32_t)) {
    Table::Records records;
    for (std::uint32_t place = 1; place <= most; ++place) records.push_back(made(place));
    table.save(context.store, hostTableFolder, records);
  };
  make(services, 5, serviceAt);
  make(nsh, 5, nshAt);
  make(proxies, 4, proxyAt);
  make(machines, 2, machineAt);
}

constexpr Table ofHost[] = {services, nsh, proxies, machines};

}  // namespace

constinit const Family ployFamily{.requests = requests, .fill = fill, .hostTables = ofHost};

}  // namespace TarnLab
