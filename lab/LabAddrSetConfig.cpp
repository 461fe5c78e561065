// Command 46: statistics of address sets on and off, and the mark of one address.
#include "LabAddrSetCommands.h"
#include "LabAddressRecord.h"
#include "LabSettings.h"
#include "LabText.h"

namespace TarnLab::AddrSets {

namespace {

constexpr std::size_t atOperation = 0, atName = 4, atAddress = 46, addressSize = 16, atFirst = 186,
                      atSecond = 190;
// Operation 3 takes the choice for a set away again.
constexpr std::uint32_t enableStatistics = 1, disableStatistics = 2, showStatistics = 4,
                        setValid = 5, clearValid = 6;
constexpr std::uint32_t unset = 0, enabled = 1, disabled = 2;

/// The place of an address in the set, or its count when the set does not hold it.
std::size_t placeOf(const SetFile& set, ConstBytes address) {
  const std::size_t count = set.head().counts[0];
  const bool shortAddress = isZero(address.subspan(4));
  for (std::size_t i = 0; i < count; ++i) {
    const ConstBytes entry = part(set.entries(), i * AddressRecord::size, AddressRecord::size);
    const unsigned type = get16(entry, AddressRecord::type);
    const std::size_t size = type == AddressRecord::ipv4 ? 4 : type == AddressRecord::ipv6 ? 16 : 0;
    if (size == 0 || (size == 4 && !shortAddress)) continue;
    if (std::memcmp(&entry[AddressRecord::value], address.data(), size) == 0) return i;
  }
  return count;
}

std::uint32_t mark(const CommandContext& context, CommandBody& body, const std::string& file,
                   const SetFile& set, bool valid) {
  const std::size_t place = placeOf(set, part(body.bytes(), atAddress, addressSize));
  if (place == set.head().counts[0]) {
    return context.refuse(Status::noAddress, "the address set does not hold the address");
  }
  ByteVector marks(set.marks().begin(), set.marks().end());
  body.put32(atFirst, get8(marks, place));
  put8(marks, place, valid ? 1 : 0);
  body.put32(atSecond, get8(marks, place));
  SetFile::save(context.store, file, set.head(), set.entries(), marks);
  return Status::ok;
}

}  // namespace

std::uint32_t configure(const CommandContext& context, CommandBody& body) {
  const ConstBytes bytes = body.bytes();
  if (const std::uint32_t status = checkName(context, bytes, atName); status != 0) return status;
  const std::uint32_t operation = get32(bytes, atOperation);
  const std::string_view name = getText(bytes, atName, nameSize);
  if (operation < enableStatistics || operation > clearValid) {
    return context.refuse(Status::invalidArgument, format("operation %u", operation));
  }
  Settings settings = Settings::load(context.store, context.target.folder);
  const std::string file = fileOf(context, name);
  std::optional<SetFile> set;
  if (!name.empty() || operation > showStatistics) {
    set = SetFile::open(context.store, file);
    if (!set) return noAddrSet(context, name);
  }
  if (operation > showStatistics) {
    return mark(context, body, file, *set, operation == setValid);
  }

  const std::uint32_t before = set ? set->head().statistics : settings.addrSetStatistics;
  if (operation == showStatistics) {
    body.put32(atFirst, settings.addrSetStatistics ? 1 : 0);
    body.put32(atSecond, set ? set->head().statistics : 0);
    return Status::ok;
  }
  std::uint32_t after = unset;
  if (operation == enableStatistics) after = enabled;
  if (operation == disableStatistics) after = disabled;
  if (set) {
    SetHead head = set->head();
    head.statistics = after;
    SetFile::save(context.store, file, head, set->entries(), set->marks());
  } else {
    settings.addrSetStatistics = after == enabled;
    settings.save(context.store, context.target.folder);
  }
  body.put32(atFirst, before);
  body.put32(atSecond, set ? after : settings.addrSetStatistics);
  return Status::ok;
}

}  // namespace TarnLab::AddrSets
