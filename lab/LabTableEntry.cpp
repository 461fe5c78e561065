#include "LabTableEntry.h"

#include <cstdlib>

#include "LabText.h"

namespace TarnLab {

namespace {

constexpr std::size_t idSize = 16;
constexpr std::uint32_t usualSlot = 2;

// Where the fields stand in a value.
constexpr std::size_t nicIndex = 16, nicSlot = 17, nicReserved = 21, portNumber = 16, hostSlot = 0,
                      hostReserved = 4;

struct Kind {
  bool include;
  std::size_t length;  // of the value; 0 for a text
};

constexpr Kind kinds[] = {{false, 0}, {false, 20}, {true, 20}, {true, 16},
                          {true, 29}, {true, 0},   {true, 12}};

bool isText(const TableEntry& entry) { return kinds[entry.type].length == 0; }

ConstBytes idIn(const TableEntry& entry) { return part(entry.value, 0, idSize); }

std::string_view textIn(const TableEntry& entry) {
  return getText(entry.value, 0, entry.value.size());
}

std::uint32_t indexIn(const TableEntry& entry) {
  return entry.type == TableEntry::includedNic ? get8(entry.value, nicIndex)
                                               : get32(entry.value, nicIndex);
}

/// The bytes of the value that say which NICs are meant.
ConstBytes subjectOf(const TableEntry& entry) {
  switch (entry.type) {
    case TableEntry::includedNic:
      return part(entry.value, 0, nicSlot);
    case TableEntry::includedHost:
      return {};
    default:
      return entry.value;
  }
}

bool same(ConstBytes left, ConstBytes right) {
  return std::equal(left.begin(), left.end(), right.begin(), right.end());
}

/// Whether the value has the length of its type.
bool isWhole(const TableEntry& entry) {
  return entry.type < std::size(kinds) &&
         (isText(entry) ? !entry.value.empty() : entry.value.size() == kinds[entry.type].length);
}

std::string valueFault(const TableEntry& entry) {
  if (isText(entry)) {
    const std::size_t length = textIn(entry).size();
    return length > 0 && length + 1 == entry.value.size() ? "" : "switch name without its one end";
  }
  std::size_t reserved = entry.value.size();
  if (entry.type == TableEntry::includedNic) reserved = nicReserved;
  if (entry.type == TableEntry::includedHost) reserved = hostReserved;
  return isZero(entry.value.subspan(reserved)) ? "" : "entry with reserved bytes set";
}

}  // namespace

bool TableEntry::isAbout(const TableEntry& other) const {
  return type == other.type && same(subjectOf(*this), subjectOf(other));
}

bool TableEntry::covers(const Nic& nic) const {
  switch (type) {
    case excludedSwitch:
    case includedSwitch:
      return textIn(*this) == nic.switchName;
    case excludedNic:
      return same(idIn(*this), idOf(nic.machine)) && indexIn(*this) == nic.index;
    case includedNic:
      return same(idIn(*this), idOf(nic.machine)) && indexIn(*this) == (nic.index & 0xff);
    case includedPort:
      return same(idIn(*this), idOf(nic.switchId)) && get32(value, portNumber) == nic.switchPort;
    case includedDvs:
      return same(idIn(*this), idOf(nic.switchId));
    default:
      return type == includedHost;
  }
}

std::uint32_t TableEntry::slot() const {
  if (type == includedNic) return get32(value, nicSlot);
  return type == includedHost ? get32(value, hostSlot) : usualSlot;
}

std::string TableEntry::text() const {
  switch (type) {
    case excludedSwitch:
    case includedSwitch:
      return "switch " + std::string(textIn(*this));
    case excludedNic:
      return "vnic " + vnicText(idIn(*this), indexIn(*this));
    case includedPort:
      return "dvs " + idText(idIn(*this)) +
             format(" port %d", static_cast<int>(get32(value, portNumber)));
    case includedDvs:
      return "dvs " + idText(idIn(*this));
    case includedNic:
      return "vnic " + vnicText(idIn(*this), indexIn(*this)) + format(", slot %u", slot());
    case includedHost:
      return format("host, slot %u", slot());
    default:
      return format("type %u", type);
  }
}

std::vector<TableEntry> entriesOf(ConstBytes table) {
  std::vector<TableEntry> entries;
  while (table.size() >= TableEntry::headSize) {
    const std::size_t length = get16(table, 1);
    if (length > table.size() - TableEntry::headSize) break;
    const ConstBytes bytes = table.first(TableEntry::headSize + length);
    entries.push_back({get8(bytes, 0), bytes.subspan(TableEntry::headSize), bytes});
    table = table.subspan(bytes.size());
  }
  return entries;
}

std::string entriesFault(ConstBytes table, bool include) {
  std::size_t size = 0;
  for (const TableEntry& entry : entriesOf(table)) {
    size += entry.bytes.size();
    if (entry.type >= std::size(kinds) || kinds[entry.type].include != include) {
      return format("entry of type %u in the %s table", entry.type,
                    include ? "include" : "exclude");
    }
    if (!isWhole(entry)) {
      return format("entry of type %u with %zu bytes", entry.type, entry.value.size());
    }
    if (std::string fault = valueFault(entry); !fault.empty()) return fault;
  }
  return size == table.size() ? "" : "entry that is cut off";
}

std::vector<std::string> entryLines(ConstBytes table) {
  std::vector<std::string> lines;
  std::size_t size = 0;
  for (const TableEntry& entry : entriesOf(table)) {
    size += entry.bytes.size();
    lines.push_back(isWhole(entry)
                        ? entry.text()
                        : format("? type %u, %zu bytes", entry.type, entry.value.size()));
  }
  if (size != table.size()) lines.emplace_back("? cut off");
  return lines;
}

std::string idText(ConstBytes id) {
  std::string text;
  for (std::size_t i = 0; i < idSize; ++i) {
    const bool dash = i == 4 || i == 6 || i == 8 || i == 10;
    text += format("%s%02x", dash ? "-" : "", static_cast<unsigned>(get8(id, i)));
  }
  return text;
}

std::string vnicText(ConstBytes machine, std::uint32_t index) {
  return idText(machine) + format(".%03u", index);
}

ByteVector idOf(std::string_view text) {
  ByteVector id(idSize);
  for (std::size_t i = 0; i < idSize && 3 * i + 2 <= text.size(); ++i) {
    const std::string digits(text.substr(3 * i, 2));
    put8(id, i, static_cast<std::uint8_t>(std::strtoul(digits.c_str(), nullptr, 16)));
  }
  return id;
}

Bytes TableMaker::append(unsigned type, std::size_t length) {
  const std::size_t at = table_.size();
  table_.resize(at + TableEntry::headSize + length);
  put8(table_, at, static_cast<std::uint8_t>(type));
  put16(table_, at + 1, static_cast<std::uint16_t>(length));
  return part(Bytes(table_), at + TableEntry::headSize, length);
}

Bytes TableMaker::appendId(unsigned type, std::string_view id) {
  const Bytes value = append(type, kinds[type].length);
  std::memcpy(value.data(), idOf(id).data(), idSize);
  return value;
}

TableMaker& TableMaker::appendText(unsigned type, std::string_view text) {
  putText(append(type, text.size() + 1), 0, text.size() + 1, text);
  return *this;
}

TableMaker& TableMaker::excludedSwitch(std::string_view name) {
  return appendText(TableEntry::excludedSwitch, name);
}

TableMaker& TableMaker::excludedNic(const Nic& nic) {
  put32(appendId(TableEntry::excludedNic, nic.machine), nicIndex, nic.index);
  return *this;
}

TableMaker& TableMaker::port(std::string_view switchId, std::uint32_t number) {
  put32(appendId(TableEntry::includedPort, switchId), portNumber, number);
  return *this;
}

TableMaker& TableMaker::dvs(std::string_view switchId) {
  appendId(TableEntry::includedDvs, switchId);
  return *this;
}

TableMaker& TableMaker::nic(const Nic& nic, std::uint32_t slot) {
  const Bytes value = appendId(TableEntry::includedNic, nic.machine);
  put8(value, nicIndex, static_cast<std::uint8_t>(nic.index));
  put32(value, nicSlot, slot);
  return *this;
}

TableMaker& TableMaker::includedSwitch(std::string_view name) {
  return appendText(TableEntry::includedSwitch, name);
}

TableMaker& TableMaker::host(std::uint32_t slot) {
  put32(append(TableEntry::includedHost, kinds[TableEntry::includedHost].length), hostSlot, slot);
  return *this;
}

}  // namespace TarnLab
