// Request 16 of the firewall device: GRE configurations of the host. No request reads them.
#include <cerrno>

#include "LabAddressRecord.h"
#include "LabFamily.h"

namespace TarnLab {

namespace {

// The body, 30 bytes.
constexpr std::size_t bodySize = 30;
constexpr Blob address{0, 4, "address"};
constexpr Hex32 key{4, "key"}, flags{8, "flags"}, encapsulated{12, "encapsulates"};
constexpr Reserved reserved{16, 4};
constexpr Blob mac{20, 6, "mac", As::mac}, guest{26, 4, "guest"};

constexpr std::uint32_t mostEthertype = 0xffff;
constexpr std::size_t entryLimit = 1024;

std::string entryText(ConstBytes entry) {
  return AddressRecord::ipText(address.get(entry)) + " for " +
         AddressRecord::ipText(guest.get(entry)) + ", " +
         fieldsText({key, flags, encapsulated, mac}, entry);
}

constexpr Table entries{"gre", bodySize, entryText};

/// An entry takes the place of one with the same two addresses.
int addEntry(Request& request, Body& body) {
  if (isZero(address.get(body)) || isZero(guest.get(body))) {
    return request.refuse(EINVAL, "address 0.0.0.0");
  }
  if (encapsulated.get(body) > mostEthertype) {
    return request.refuse(EINVAL, fieldsText({encapsulated}, body));
  }
  const auto sameBytes = [](ConstBytes one, ConstBytes other) {
    return std::equal(one.begin(), one.end(), other.begin(), other.end());
  };
  Table::Records records = entries.load(request.store, hostTableFolder);
  std::erase_if(records, [&](const ByteVector& record) {
    return sameBytes(address.get(record), address.get(body)) &&
           sameBytes(guest.get(record), guest.get(body));
  });
  if (records.size() >= entryLimit) return request.refuse(ENOSPC, "too many entries");
  records.emplace_back(body.bytes().begin(), body.bytes().end());
  entries.save(request.store, hostTableFolder, records);
  return 0;
}

std::string asked(ConstBytes body) { return " " + entryText(body); }

constexpr DirectKind requests[] = {
    {.device = Device::firewall,
     .number = 16,
     .title = "add GRE",
     .size = bodySize,
     .answer = addEntry,
     .request = {reserved},
     .asked = asked},
};

constexpr Table ofHost[] = {entries};

}  // namespace

constinit const Family greFamily{.requests = requests, .hostTables = ofHost};

}  // namespace TarnLab
