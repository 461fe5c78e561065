// Requests 25 and 26 of the firewall device: which flows of the host, or of a filter, are not
// collected, and what of them is aggregated.
#include <cerrno>

#include "LabAddressRecord.h"
#include "LabFamily.h"

namespace TarnLab {

namespace {

// The body, 116 bytes.
constexpr std::size_t bodySize = 116, nameRoom = 99;
constexpr Name filter{0, 100, "filter", "filter"};
constexpr Hex32 flags{100, "flags"};
constexpr U32 room{104, "room"}, length{104, "length"};
constexpr U64 buffer{108, "buffer"};

// What the host collects, and what is aggregated; those of a filter are of the latter kind.
constexpr std::uint32_t hostFlags = 0xf;
constexpr struct {
  std::uint32_t mask;
  const char* text;
} flagTexts[] = {
    {0x1, "no flows"},
    {0x2, "no non-IP L2 flows"},
    {0x4, "no L2 flows"},
    {0x8, "no dropped packets"},
    {0x8003c500, "source addresses together"},
    {0x8003c600, "destination addresses together"},
    {0x8003cc00, "protocols together"},
    {0x8003d400, "source ports together"},
    {0x8003e400, "destination ports together"},
};

/// One definition.
namespace Definition {
constexpr std::size_t size = 162, most = 1024;
constexpr Hex32 fields{0, "fields"}, negated{4, "negated"};
constexpr U8 protocolCount{8, "protocols"}, ethertypeCount{9, "ethertypes"};
constexpr std::size_t protocols = 10, mostProtocols = 8, ethertypes = 18, mostEthertypes = 4;

constexpr std::uint32_t ethertypeBit = 0x100, protocolBit = 0x200, ipv6Bit = 0x80000000;
constexpr std::uint32_t rangeBits = 0x28;
constexpr std::uint32_t known = 0x80003fff;
constexpr std::uint32_t negatable = known & ~(ipv6Bit | rangeBits);

/// Where an end of a flow stands.
struct End {
  const char* name;
  std::uint32_t macBit, addressBit, rangeBit, portBit, vnicBit, vmBit;
  Blob mac, macMask, address, addressEnd;
  Net16 port, portEnd;
  Blob vnic;
  U32 vnicIndex;
};

constexpr End ends[] = {
    {"source",
     0x1,
     0x4,
     0x8,
     0x40,
     0x400,
     0x1000,
     {26, 6, "mac", As::mac},
     {32, 6, "mac mask", As::mac},
     {50, 16, "address"},
     {66, 16, "address end"},
     {114, "port"},
     {116, "port end"},
     {122, 16, "vnic"},
     {138, "index"}},
    {"destination",
     0x2,
     0x10,
     0x20,
     0x80,
     0x800,
     0x2000,
     {38, 6, "mac", As::mac},
     {44, 6, "mac mask", As::mac},
     {82, 16, "address"},
     {98, 16, "address end"},
     {118, "port"},
     {120, "port end"},
     {142, 16, "vnic"},
     {158, "index"}},
};
}  // namespace Definition

using Definition::End;

/// The bytes that belong to the fields which a definition names; all others have to be zero.
std::vector<Field> namedFields(std::uint32_t fields) {
  std::vector<Field> named = {Definition::fields, Definition::negated};
  const auto add = [&](std::uint32_t bits, std::initializer_list<Field> some) {
    if ((fields & bits) != 0) named.insert(named.end(), some);
  };
  add(Definition::protocolBit,
      {Definition::protocolCount, Blob{Definition::protocols, Definition::mostProtocols, ""}});
  add(Definition::ethertypeBit, {Definition::ethertypeCount,
                                 Blob{Definition::ethertypes, 2 * Definition::mostEthertypes, ""}});
  for (const End& end : Definition::ends) {
    add(end.macBit, {end.mac, end.macMask});
    add(end.addressBit, {end.address});
    if ((fields & Definition::ipv6Bit) != 0) add(end.addressBit, {end.addressEnd});
    add(end.portBit, {end.port, end.portEnd});
    add(end.vnicBit | end.vmBit, {end.vnic});
    add(end.vnicBit, {end.vnicIndex});
  }
  return named;
}

/// What is wrong with a definition; empty when nothing is.
std::string faultOf(ConstBytes record) {
  const std::uint32_t fields = Definition::fields.get(record);
  const std::uint32_t negated = Definition::negated.get(record);
  if ((fields & ~Definition::known) != 0) return format("fields 0x%x", fields);
  if ((fields & Definition::negatable) == 0) return "no field";
  if ((negated & ~(fields & Definition::negatable)) != 0) return format("negated 0x%x", negated);
  for (const End& end : Definition::ends) {
    const bool range = (fields & end.rangeBit) != 0 && (fields & end.addressBit) == 0;
    const bool both = (fields & end.vnicBit) != 0 && (fields & end.vmBit) != 0;
    if (range || both) return format("fields 0x%x", fields);
    if ((fields & end.portBit) != 0 && (fields & Definition::protocolBit) == 0) {
      return std::string(end.name) + " port without a protocol";
    }
  }
  if (Definition::protocolCount.get(record) > Definition::mostProtocols ||
      Definition::ethertypeCount.get(record) > Definition::mostEthertypes) {
    return format("%u protocols and %u ethertypes", Definition::protocolCount.get(record),
                  Definition::ethertypeCount.get(record));
  }
  ByteVector rest(record.begin(), record.end());
  for (const Field& field : namedFields(fields)) {
    const Bytes bytes = part(Bytes(rest), field.offset, field.size);
    std::fill(bytes.begin(), bytes.end(), std::byte{0});
  }
  return isZero(rest) ? "" : "bytes of a field that is not named";
}

std::string hexText(ConstBytes bytes, const char* separator) {
  std::string text;
  for (const std::byte byte : bytes) {
    text += format("%s%02x", text.empty() ? "" : separator, static_cast<unsigned>(byte));
  }
  return text;
}

std::string addressText(const End& end, ConstBytes record) {
  const std::uint32_t fields = Definition::fields.get(record);
  const ConstBytes first = end.address.get(record);
  const bool ipv6 = (fields & Definition::ipv6Bit) != 0;
  return AddressRecord::ipText(ipv6 ? first : first.first(4)) +
         ((fields & end.rangeBit) != 0 ? " to " : " mask ") +
         AddressRecord::ipText(ipv6 ? end.addressEnd.get(record) : first.subspan(4, 4));
}

std::string portText(const End& end, ConstBytes record) {
  std::string text = format("%u", end.port.get(record));
  if (end.portEnd.get(record) != 0) text += format(" to %u", end.portEnd.get(record));
  return text;
}

std::string listText(ConstBytes record, unsigned count, std::size_t at, std::size_t size) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    const ConstBytes item = part(record, at + i * size, size);
    text += (text.empty() ? "" : " ") +
            (size == 1 ? format("%u", get8(item, 0)) : "0x" + hexText(item, ""));
  }
  return text;
}

/// A definition in the lab's own words, for `tarnlab show` and the log.
std::string definitionText(ConstBytes record) {
  const std::uint32_t fields = Definition::fields.get(record);
  const std::uint32_t negated = Definition::negated.get(record);
  std::string text;
  const auto add = [&](std::uint32_t bit, const std::string& name, const std::string& value) {
    if ((fields & bit) == 0) return;
    text += (text.empty() ? "" : ", ") + std::string((negated & bit) != 0 ? "not " : "") + name +
            " " + value;
  };
  for (const End& end : Definition::ends) {
    const std::string name = end.name;
    add(end.macBit, name + " mac",
        hexText(end.mac.get(record), ":") + " mask " + hexText(end.macMask.get(record), ":"));
    add(end.addressBit, name, addressText(end, record));
    add(end.portBit, name + " port", portText(end, record));
    add(end.vnicBit, name + " vnic",
        hexText(end.vnic.get(record), "") + format(" index %u", end.vnicIndex.get(record)));
    add(end.vmBit, name + " machine", hexText(end.vnic.get(record), ""));
  }
  add(Definition::protocolBit, "protocols",
      listText(record,
               std::min<unsigned>(Definition::protocolCount.get(record), Definition::mostProtocols),
               Definition::protocols, 1));
  add(Definition::ethertypeBit, "ethertypes",
      listText(
          record,
          std::min<unsigned>(Definition::ethertypeCount.get(record), Definition::mostEthertypes),
          Definition::ethertypes, 2));
  return text.empty() ? "nothing" : text;
}

std::vector<std::string> definitionLines(ConstBytes records) {
  std::vector<std::string> lines;
  for (; records.size() >= Definition::size; records = records.subspan(Definition::size)) {
    lines.push_back(definitionText(records.first(Definition::size)));
  }
  return lines;
}

/// How many definitions there are, and the first of them below it.
std::string definitionsText(ConstBytes records) {
  constexpr std::size_t shown = 16;
  const std::vector<std::string> lines = definitionLines(records);
  std::string text = format("%zu definition%s", lines.size(), lines.size() == 1 ? "" : "s");
  for (std::size_t i = 0; i < std::min(lines.size(), shown); ++i) text += "\n    " + lines[i];
  if (lines.size() > shown) text += format("\n    and %zu more", lines.size() - shown);
  return text;
}

/// The texts of the flags that are all there, one in which the bits of another are left out: masks
/// of aggregation share bits. A mask whose own bits are missing is none.
std::string flagsText(ConstBytes bytes) {
  const std::uint32_t value = bytes.size() == 4 ? get32(bytes, 0) : 0;
  std::string text;
  for (const auto& flag : flagTexts) {
    if ((value & flag.mask) == flag.mask)
      text += (text.empty() ? "" : ", ") + std::string(flag.text);
  }
  return text.empty() ? "everything" : text;
}

constexpr BytesSetting collected{"flow-exclusion.flags", flagsText},
    excluded{"flow-exclusion.definitions", definitionsText};

/// A host that was not set to anything does not collect flows of other protocols on layer 2.
std::uint32_t flagsOf(const Settings& settings, bool ofHost) {
  const ByteVector stored = settings.get(collected);
  if (stored.size() == 4) return get32(stored, 0);
  return ofHost ? 0x2 : 0;
}

bool areMasks(std::uint32_t value) {
  std::uint32_t explained = 0;
  for (const auto& flag : flagTexts) {
    if ((value & flag.mask) == flag.mask) explained |= flag.mask;
  }
  return explained == value;
}

/// Hands the folder of the filter that the body names, or of the host, to `use`, for an errno.
template <typename Use>
int withTarget(Request& request, Body& body, Use use) {
  const std::string_view name = filter.get(body);
  if (name.empty()) return use(Settings::ofHost);
  const auto index = request.host.find(name, nameRoom);
  if (index) return use(request.host.folderOf(*index));
  return request.refuse(ENOENT, "there is no filter " + printable(name));
}

/// What is set takes the place of everything that was.
int setExclusion(Request& request, Body& body) {
  return withTarget(request, body, [&](const std::string& folder) {
    const bool ofHost = folder.empty();
    const std::uint32_t value = flags.get(body);
    if (!areMasks(value) || (!ofHost && (value & hostFlags) != 0)) {
      return request.refuse(EINVAL, format("flags 0x%x", value));
    }
    const std::uint32_t size = length.get(body);
    if (size % Definition::size != 0) {
      return request.refuse(EINVAL, format("definitions of %u bytes", size));
    }
    ByteVector records;
    constexpr std::size_t limit = Definition::most * Definition::size;
    if (const int error = request.readBuffer(buffer.get(body), size, limit, records)) return error;
    for (std::size_t i = 0; i < size / Definition::size; ++i) {
      const std::string fault =
          faultOf(part(ConstBytes(records), i * Definition::size, Definition::size));
      if (!fault.empty()) return request.refuse(EINVAL, format("definition %zu: ", i) + fault);
    }
    Settings settings = Settings::load(request.store, folder);
    ByteVector stored(4);
    put32(stored, 0, value);
    settings.set(collected, value == 0 && !ofHost ? ByteVector() : stored);
    settings.set(excluded, records);
    settings.save(request.store, folder);
    return 0;
  });
}

/// As many definitions as the buffer has room for.
int getExclusion(Request& request, Body& body) {
  return withTarget(request, body, [&](const std::string& folder) {
    if (room.get(body) % Definition::size != 0) {
      return request.refuse(EINVAL, format("buffer of %u bytes", room.get(body)));
    }
    const Settings settings = Settings::load(request.store, folder);
    ByteVector records = settings.get(excluded);
    records.resize(std::min<std::size_t>(records.size(), room.get(body)));
    if (const int error = request.writeBuffer(buffer.get(body), records)) return error;
    flags.put(body, flagsOf(settings, folder.empty()));
    length.put(body, static_cast<std::uint32_t>(records.size()));
    return 0;
  });
}

// --- The usual definitions

/// A definition in the making.
class Maker {
 public:
  Maker& mac(const End& end, std::initializer_list<unsigned> address,
             std::initializer_list<unsigned> mask) {
    return bytes(end.macBit, end.mac, address).bytes(end.macBit, end.macMask, mask);
  }
  Maker& ethertypes(std::initializer_list<unsigned> types) {
    Definition::ethertypeCount.put(Bytes(record_), static_cast<std::uint8_t>(types.size()));
    std::size_t at = Definition::ethertypes;
    for (const unsigned type : types) {
      put8(record_, at++, static_cast<std::uint8_t>(type >> 8));
      put8(record_, at++, static_cast<std::uint8_t>(type));
    }
    return name(Definition::ethertypeBit);
  }
  Maker& protocols(std::initializer_list<unsigned> numbers) {
    Definition::protocolCount.put(Bytes(record_), static_cast<std::uint8_t>(numbers.size()));
    std::size_t at = Definition::protocols;
    for (const unsigned number : numbers) put8(record_, at++, static_cast<std::uint8_t>(number));
    return name(Definition::protocolBit);
  }
  /// IPv4: the address and what follows it.
  Maker& ipv4(const End& end, std::initializer_list<unsigned> octets) {
    return bytes(end.addressBit, end.address, octets);
  }
  Maker& ipv6(const End& end, std::initializer_list<unsigned> first,
              std::initializer_list<unsigned> last) {
    name(Definition::ipv6Bit);
    return bytes(end.addressBit, end.address, first).bytes(end.addressBit, end.addressEnd, last);
  }
  Maker& ports(const End& end, unsigned low, unsigned high) {
    end.port.put(Bytes(record_), static_cast<std::uint16_t>(low));
    end.portEnd.put(Bytes(record_), static_cast<std::uint16_t>(high));
    return name(end.portBit);
  }
  /// A machine of the usual host, as in the filter's record.
  Maker& machine(const End& end, const CommandContext& context) {
    putMachine(end, context);
    return name(end.vmBit);
  }
  Maker& vnic(const End& end, const CommandContext& context) {
    putMachine(end, context);
    end.vnicIndex.put(Bytes(record_),
                      get32(context.host.record(context.target.index), FilterRecord::vnicIndex));
    return name(end.vnicBit);
  }
  Maker& name(std::uint32_t bits) {
    Definition::fields.put(Bytes(record_), Definition::fields.get(record_) | bits);
    return *this;
  }
  Maker& negate(std::uint32_t bits) {
    Definition::negated.put(Bytes(record_), Definition::negated.get(record_) | bits);
    return *this;
  }
  const ByteVector& record() const { return record_; }

 private:
  Maker& bytes(std::uint32_t bit, const Field& field, std::initializer_list<unsigned> values) {
    std::size_t at = field.offset;
    for (const unsigned value : values) put8(record_, at++, static_cast<std::uint8_t>(value));
    return name(bit);
  }
  void putMachine(const End& end, const CommandContext& context) {
    const ConstBytes record = context.host.record(context.target.index);
    const std::string_view text = getText(record, FilterRecord::vmUuid, FilterRecord::vmUuidSize);
    for (std::size_t i = 0; i < 16 && 3 * i + 2 <= text.size(); ++i) {
      const auto octet = parseNumber("0x" + std::string(text.substr(3 * i, 2)), 0xff);
      put8(record_, end.vnic.offset + i, static_cast<std::uint8_t>(octet.value_or(0)));
    }
  }

  ByteVector record_ = ByteVector(Definition::size);
};

/// The second NIC of the application server, which is for storage: every field alone or with
/// others, negated and not, of both families, as ranges and with masks.
void fill(const CommandContext& context) {
  if (context.host.name(context.target.index) != "nic-1003044-eth1-kelpco-sfw.2") return;
  const End& source = Definition::ends[0];
  const End& destination = Definition::ends[1];
  const Maker definitions[] = {
      Maker()
          .mac(source, {0, 0x50, 0x56, 0x99, 0x10, 0x78}, {255, 255, 255, 255, 255, 255})
          .mac(destination, {1, 0, 0x5e, 0, 0, 0}, {255, 255, 255, 0x80, 0, 0})
          .ethertypes({0x88cc, 0x8906})
          .negate(source.macBit),
      Maker()
          .ipv4(source, {10, 20, 7, 0, 255, 255, 255, 0})
          .ipv4(destination, {10, 20, 7, 16, 10, 20, 7, 23})
          .name(destination.rangeBit)
          .protocols({6, 17})
          .ports(source, 1024, 65535)
          .ports(destination, 2049, 0),
      Maker()
          .ipv6(source, {0xfe, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1},
                {0xfe, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0x1f})
          .name(source.rangeBit)
          .ipv6(destination, {0xfd, 0, 0, 0x20, 0, 7}, {255, 255, 255, 255, 255, 255})
          .protocols({1, 58, 253})
          .negate(destination.addressBit | Definition::protocolBit),
      Maker().vnic(source, context).machine(destination, context).negate(source.vnicBit),
      Maker().machine(source, context).vnic(destination, context).negate(destination.vnicBit),
      Maker()
          .protocols({6})
          .ports(destination, 3260, 3261)
          .ethertypes({0x0800})
          .negate(destination.portBit | Definition::ethertypeBit),
  };
  ByteVector records;
  for (const Maker& one : definitions) {
    records.insert(records.end(), one.record().begin(), one.record().end());
  }
  changeSettings(context, [&](Settings& settings) {
    settings.set(excluded, records);
    return Status::ok;
  });
}

constexpr RecordKind definitionRecords{0, nullptr, {}, definitionLines};

constexpr DirectKind requests[] = {
    {.device = Device::firewall,
     .number = 25,
     .title = "set flow exclusion",
     .size = bodySize,
     .answer = setExclusion,
     .request = {filter, flags, length},
     .list = {.record = &definitionRecords, .inRequest = true, .at = bodySize}},
    {.device = Device::firewall,
     .number = 26,
     .title = "flow exclusion",
     .size = bodySize,
     .answer = getExclusion,
     .request = {filter, Reserved{100, 4}, room},
     .reply = {flags, length},
     .list = {.record = &definitionRecords, .at = bodySize}},
};

constexpr Setting settings[] = {collected, excluded};

}  // namespace

constinit const Family flowExclusionFamily{
    .requests = requests, .settings = settings, .fill = fill};

}  // namespace TarnLab
