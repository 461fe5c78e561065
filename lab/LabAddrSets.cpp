// The commands that make, change and remove address sets and containers.
#include "LabAddrSetCommands.h"
#include "LabAddressRecord.h"
#include "LabChain.h"
#include "LabSelector.h"
#include "LabSettings.h"
#include "LabText.h"

namespace TarnLab {

namespace {

using AddrSets::nameSize;
using Context = const CommandContext&;

// The head of both creations, 86 bytes.
constexpr std::size_t atCount = 46, atType = 50, atBytes = 54, atFlags = 58, atEntries = 86;
constexpr unsigned flagsCommitted = 3, flagIPv6 = 8;

/// Checks the head of a creation; 0 or a status.
std::uint32_t checkCreation(Context context, ConstBytes bytes) {
  if (const std::uint32_t status = AddrSets::checkName(context, bytes, 0); status != 0) {
    return status;
  }
  if (getText(bytes, 0, nameSize).empty()) {
    return context.refuse(Status::noAddrSet, "address set without a name");
  }
  if (get64(bytes, nameSize) != 0 || (get8(bytes, atFlags) & ~(flagsCommitted | flagIPv6)) != 0 ||
      !isZero(part(bytes, atFlags + 1, 3)) || get64(bytes, 78) != 0) {
    return context.refuse(Status::badMessage, "address set with reserved bytes set");
  }
  if ((get8(bytes, atFlags) & flagsCommitted) != flagsCommitted) {
    return context.refuse(Status::badTransaction, "address set as a part of a transaction");
  }
  if (get32(bytes, atBytes) != bytes.size() - atEntries) {
    return context.refuse(Status::badMessage,
                          format("address set of %u bytes, %zu are there", get32(bytes, atBytes),
                                 bytes.size() - atEntries));
  }
  if (bytes.size() - atEntries > context.host.memory()) {
    return context.refuse(Status::noMemory, "address set beyond the host's memory");
  }
  return Status::ok;
}

/// Stores a set under its name, with the next generation when there was one before.
std::uint32_t store(Context context, std::string_view name, SetHead head, ConstBytes entries) {
  const std::string file = AddrSets::fileOf(context, name);
  if (const auto before = SetFile::open(context.store, file)) {
    head.generation = before->head().generation;
    head.statistics = before->head().statistics;
  }
  head.what = SetHead::addrSet;
  head.entryBytes = entries.size();
  head.touch();
  SetFile::save(context.store, file, head, entries);
  return Status::ok;
}

std::uint32_t createAddrSet(Context context, CommandBody& body) {
  const ConstBytes bytes = body.bytes();
  if (const std::uint32_t status = checkCreation(context, bytes); status != 0) return status;
  const std::uint32_t count = get32(bytes, atCount);
  const ConstBytes entries = bytes.subspan(atEntries);
  if (get32(bytes, atType) != 1) {
    return context.refuse(Status::invalidAddrSetType,
                          format("address set of type %u", get32(bytes, atType)));
  }
  if (std::uint64_t{count} * AddressRecord::size != entries.size()) {
    return context.refuse(Status::badMessage,
                          format("%u addresses in %zu bytes", count, entries.size()));
  }
  SetHead head;
  head.type = 1;
  head.addressType = 1;
  head.counts[0] = count;
  bool ipv6 = false;
  for (std::size_t i = 0; i < count; ++i) {
    const ConstBytes address = entries.subspan(i * AddressRecord::size, AddressRecord::size);
    const unsigned type = get16(address, AddressRecord::type);
    std::string fault = AddressRecord::fault(address);
    if (type == AddressRecord::setName) fault = "address set inside an address set";
    if (!fault.empty()) {
      return context.refuse(Status::invalidAddress, format("address %zu: %s", i, fault.c_str()));
    }
    const bool ip = AddressRecord::isIp(type) || type == AddressRecord::any;
    const unsigned group = ip ? 1 : AddressRecord::isMac(type) ? 2 : 4;
    if (i > 0 && group != head.addressType) {
      return context.refuse(Status::invalidAddrSetType, format("address %zu of another kind", i));
    }
    head.addressType = group;
    ipv6 = ipv6 || type == AddressRecord::ipv6 || type == AddressRecord::ipv6Range ||
           type == AddressRecord::ipv6Cidr;
  }
  if (ipv6 != ((get8(bytes, atFlags) & flagIPv6) != 0)) {
    return context.refuse(Status::badMessage, "IPv6 flag does not agree with the addresses");
  }
  return store(context, getText(bytes, 0, nameSize), head, entries);
}

std::uint32_t createContainer(Context context, CommandBody& body) {
  const ConstBytes bytes = body.bytes();
  if (const std::uint32_t status = checkCreation(context, bytes); status != 0) return status;
  const ConstBytes chain = bytes.subspan(atEntries);
  std::string fault = Chain::fault(chain);
  if (fault.empty() && (get32(chain, Chain::type) != get32(bytes, atType) ||
                        get32(chain, Chain::count) != get32(bytes, atCount))) {
    fault = "chain that does not agree with its container";
  }
  if (!fault.empty()) return context.refuse(Status::invalidAttribute, fault);
  SetHead head;
  head.type = get32(bytes, atType);
  head.addressType = 4;
  head.counts[0] = get32(bytes, atCount);
  return store(context, getText(bytes, 0, nameSize), head, chain);
}

std::uint32_t destroy(Context context, CommandBody& body) {
  if (const std::uint32_t status = AddrSets::checkName(context, body.bytes(), 0); status != 0) {
    return status;
  }
  const std::string_view name = getText(body.bytes(), 0, nameSize);
  if (!context.store.remove(AddrSets::fileOf(context, name))) {
    return AddrSets::noAddrSet(context, name);
  }
  return Status::ok;
}

std::uint32_t clear(Context context, CommandBody& body) {
  if (const std::uint32_t status = AddrSets::checkName(context, body.bytes(), 0); status != 0) {
    return status;
  }
  const std::string_view name = getText(body.bytes(), 0, nameSize);
  const std::string file = AddrSets::fileOf(context, name);
  const auto set = SetFile::open(context.store, file);
  if (!set) return AddrSets::noAddrSet(context, name);
  SetHead head = set->head();
  head.counts[0] = 0;
  ByteVector entries;
  if (head.type != 1) {
    entries.resize(Chain::headSize);
    put32(entries, Chain::type, head.type);
  }
  head.entryBytes = entries.size();
  head.touch();
  SetFile::save(context.store, file, head, entries);
  return Status::ok;
}

std::uint32_t destroyAll(Context context, CommandBody&) {
  context.store.removeTree(AddrSets::folderOf(context));
  return Status::ok;
}

std::uint32_t configShared(Context context, CommandBody& body) {
  if (context.target.match != SelectorMatch::filter) {
    return context.refuse(Status::notSupported, "sharing is set for a filter");
  }
  Settings settings = Settings::load(context.store, context.target.folder);
  settings.sharedAddrSets = (get8(body.bytes(), 0) & 1) != 0;
  settings.save(context.store, context.target.folder);
  return Status::ok;
}

std::uint32_t getShared(Context context, CommandBody& body) {
  const Settings settings = Settings::load(context.store, context.target.folder);
  put32(body.reply(0, 4), 0, settings.sharedAddrSets ? 1 : 0);
  return Status::ok;
}

}  // namespace

namespace AddrSets {

std::string folderOf(const CommandContext& context) { return context.target.folder + "/addrsets"; }

std::string fileOf(const CommandContext& context, std::string_view name) {
  return folderOf(context) + "/" + Selector::fileName(name);
}

std::vector<std::string> names(const CommandContext& context) {
  std::vector<std::string> found;
  for (const std::string& file : context.store.list(folderOf(context))) {
    found.push_back(Selector::nameOfFile(file));
  }
  return found;
}

std::uint32_t checkName(const CommandContext& context, ConstBytes body, std::size_t offset) {
  const ConstBytes field = part(body, offset, nameSize);
  const std::string_view name = getText(body, offset, nameSize);
  if (name.size() < nameSize && isZero(field.subspan(name.size()))) return Status::ok;
  return context.refuse(Status::badMessage, "address set name is not padded with zeros");
}

std::uint32_t noAddrSet(const CommandContext& context, std::string_view name) {
  return context.refuse(Status::noAddrSet, "there is no address set " + printable(name));
}

}  // namespace AddrSets

std::span<const CommandKind> addrSetCommands() {
  static constexpr CommandKind commands[] = {
      {13, 86, CommandScope::sets, createAddrSet},
      {14, 38, CommandScope::sets, destroy, {38, 4}},
      {15, 50, CommandScope::sets, AddrSets::getTypeAndSize},
      {16, 58, CommandScope::sets, AddrSets::getInfo},
      {17, 70, CommandScope::sets, AddrSets::getAddresses},
      {18, 54, CommandScope::sets, AddrSets::getMarks},
      {19, 58, CommandScope::sets, AddrSets::getEntryStatistics},
      {20, 8, CommandScope::sets, AddrSets::getCount},
      {21, 16, CommandScope::sets, AddrSets::getList},
      {22, 16, CommandScope::sets, AddrSets::getStatisticsList},
      {44, 4, CommandScope::sets, configShared},
      {45, 4, CommandScope::sets, getShared},
      {46, 194, CommandScope::sets, AddrSets::configure},
      {56, 70, CommandScope::sets, AddrSets::getElements, {38, 4}},
      {64, 38, CommandScope::sets, clear, {38, 8}},
      {65, 1, CommandScope::sets, destroyAll, {0, 4}},
      {75, 86, CommandScope::sets, createContainer},
  };
  return commands;
}

}  // namespace TarnLab
