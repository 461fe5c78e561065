#include "LabHost.h"

#include <cerrno>

#include "LabSelector.h"
#include "LabText.h"

namespace TarnLab {

namespace {

// The file "host": a head of 64 bytes; 1024 bytes for each filter, its record and what else is
// known of it; 512 bytes for each virtual NIC; and the agents, each with the sizes of its name and
// its tables before them.
constexpr std::string_view magic = "TARNLAB2";
constexpr std::size_t headSize = 64;
constexpr std::size_t headFilters = 8, headNics = 12, headMemory = 16, headFlows = 24,
                      headMachines = 28, headFlags = 32, headNextNumber = 36, headAgents = 40;
constexpr std::uint8_t flagFirewallOff = 1, flagBare = 2;
constexpr std::uint32_t agentLimit = 1024;

constexpr std::size_t slotNumber = 880, slotNic = 884, slotSlot = 888, slotApart = 892;
constexpr std::size_t agentHead = 12;

constexpr std::string_view sharedPrefix = "shared-addrset-filter-";

/// Takes that many bytes from the front; nothing when they are not there.
std::optional<ConstBytes> take(ConstBytes& rest, std::uint64_t size) {
  if (size > rest.size()) return std::nullopt;
  const ConstBytes piece = rest.first(static_cast<std::size_t>(size));
  rest = rest.subspan(piece.size());
  return piece;
}

ByteVector copyOf(ConstBytes bytes) { return {bytes.begin(), bytes.end()}; }

std::optional<Agent> takeAgent(ConstBytes& rest) {
  const auto head = take(rest, agentHead);
  if (!head) return std::nullopt;
  const auto name = take(rest, get32(*head, 0));
  const auto include = take(rest, get32(*head, 4));
  const auto exclude = take(rest, get32(*head, 8));
  if (!name || !include || !exclude) return std::nullopt;
  return Agent{std::string(reinterpret_cast<const char*>(name->data()), name->size()),
               copyOf(*include), copyOf(*exclude)};
}

ByteVector bytesOf(const std::vector<Agent>& agents) {
  ByteVector bytes;
  for (const Agent& agent : agents) {
    ByteVector head(agentHead);
    put32(head, 0, static_cast<std::uint32_t>(agent.name.size()));
    put32(head, 4, static_cast<std::uint32_t>(agent.include.size()));
    put32(head, 8, static_cast<std::uint32_t>(agent.exclude.size()));
    bytes.insert(bytes.end(), head.begin(), head.end());
    const auto name = std::as_bytes(std::span<const char>(agent.name));
    bytes.insert(bytes.end(), name.begin(), name.end());
    bytes.insert(bytes.end(), agent.include.begin(), agent.include.end());
    bytes.insert(bytes.end(), agent.exclude.begin(), agent.exclude.end());
  }
  return bytes;
}

}  // namespace

Host Host::load(const Store& store) {
  constexpr std::uint64_t agentBytes = std::uint64_t{agentLimit} << 20;
  const auto content = store.read(
      "host", headSize + std::uint64_t{machineLimit} * 2 * (slotSize + nicSize) + agentBytes);
  if (!content) throw StoreError("no lab at " + store.folder(), ENOENT);
  const StoreError damaged("damaged file " + store.path("host"), EINVAL);
  ConstBytes rest = *content;
  const auto head = take(rest, headSize);
  if (!head || getText(*head, 0, magic.size()) != magic) throw damaged;
  const auto filters = take(rest, std::uint64_t{get32(*head, headFilters)} * slotSize);
  if (!filters) throw damaged;
  const auto nics = take(rest, std::uint64_t{get32(*head, headNics)} * nicSize);
  if (!nics) throw damaged;

  Host host;
  host.slots_ = copyOf(*filters);
  host.nics_ = copyOf(*nics);
  for (std::uint32_t i = get32(*head, headAgents); i > 0; --i) {
    auto agent = takeAgent(rest);
    if (!agent) throw damaged;
    host.agents_.push_back(std::move(*agent));
  }
  if (!rest.empty()) throw damaged;
  for (std::size_t i = 0; i < host.filterCount(); ++i) {
    if (host.nicOf(i) >= host.nicCount()) throw damaged;
  }
  host.plan_ = {get32(*head, headMachines), get64(*head, headMemory), get32(*head, headFlows),
                (get8(*head, headFlags) & flagFirewallOff) != 0,
                (get8(*head, headFlags) & flagBare) != 0};
  host.nextNumber_ = get32(*head, headNextNumber);
  return host;
}

void Host::save(const Store& store) const {
  ByteVector head(headSize);
  std::memcpy(head.data(), magic.data(), magic.size());
  put32(head, headFilters, static_cast<std::uint32_t>(filterCount()));
  put32(head, headNics, static_cast<std::uint32_t>(nicCount()));
  put64(head, headMemory, plan_.memory);
  put32(head, headFlows, plan_.flows);
  put32(head, headMachines, plan_.machines);
  put8(head, headFlags,
       static_cast<std::uint8_t>((plan_.firewallOff ? flagFirewallOff : 0) |
                                 (plan_.bare ? flagBare : 0)));
  put32(head, headNextNumber, nextNumber_);
  put32(head, headAgents, static_cast<std::uint32_t>(agents_.size()));
  store.replace("host", {head, slots_, nics_, bytesOf(agents_)});
}

ConstBytes Host::record(std::size_t index) const { return slot(index).first(FilterRecord::size); }

std::string_view Host::name(std::size_t index) const {
  return getText(slot(index), FilterRecord::name, FilterRecord::nameSize);
}

std::string_view Host::agent(std::size_t index) const {
  return getText(slot(index), FilterRecord::agent, FilterRecord::agentSize);
}

bool Host::isLogical(std::size_t index) const {
  return !getText(record(index), FilterRecord::vif, FilterRecord::vifSize).empty();
}

std::uint64_t Host::load(std::size_t index) const {
  constexpr std::size_t notIp = 18;  // the host's maker counts two of them for each unit of load
  return get64(record(index), FilterRecord::counters + 8 * notIp) / 2;
}

std::size_t Host::nicOf(std::size_t index) const { return get32(slot(index), slotNic); }

std::uint32_t Host::slotOf(std::size_t index) const { return get32(slot(index), slotSlot); }

bool Host::isConnected(std::size_t index) const { return get8(slot(index), slotApart) == 0; }

void Host::connect(std::size_t index, bool connected) {
  put8(slot(index), slotApart, connected ? 0 : 1);
}

std::size_t Host::addFilter(std::size_t place, std::string_view agent, std::uint32_t filterSlot) {
  const Nic on = nic(place);
  slots_.resize(slots_.size() + slotSize);
  const std::size_t index = filterCount() - 1;
  const Bytes it = slot(index);
  putText(it, FilterRecord::name, FilterRecord::nameSize,
          format("nic-%u-%s-%s.%u", on.world, std::string(on.name).c_str(),
                 std::string(agent).c_str(), filterSlot));
  putText(it, FilterRecord::agent, FilterRecord::agentSize, agent);
  putText(it, FilterRecord::vmUuid, FilterRecord::vmUuidSize, on.machine);
  put32(it, FilterRecord::vnicIndex, on.index);
  put16(it, FilterRecord::hash, static_cast<std::uint16_t>(on.world * 31 + filterSlot));
  putText(it, FilterRecord::vif, FilterRecord::vifSize, on.vif);
  putText(it, FilterRecord::lsp, FilterRecord::lspSize, on.lsp);
  put32(it, slotNumber, nextNumber_++);
  put32(it, slotNic, static_cast<std::uint32_t>(place));
  put32(it, slotSlot, filterSlot);
  return index;
}

void Host::removeFilter(std::size_t index) {
  const auto at = slots_.begin() + static_cast<std::ptrdiff_t>(index * slotSize);
  slots_.erase(at, at + slotSize);
}

std::optional<std::size_t> Host::find(std::string_view wanted, std::size_t room) const {
  for (std::size_t i = 0; i < filterCount(); ++i) {
    if (name(i).substr(0, room) == wanted) return i;
  }
  return std::nullopt;
}

std::string Host::folderOf(std::size_t index) const {
  return format("filters/%u", get32(slot(index), slotNumber));
}

std::optional<std::size_t> Host::findAgent(std::string_view wanted, std::size_t room) const {
  for (std::size_t i = 0; i < agents_.size(); ++i) {
    if (std::string_view(agents_[i].name).substr(0, room) == wanted) return i;
  }
  return std::nullopt;
}

SelectedFilter Host::select(ConstBytes selector) const {
  const Selector wanted(selector);
  if (wanted.type == Selector::none) return {SelectorMatch::none, 0, ""};

  if (wanted.type == Selector::filter &&
      equalIgnoringCase(sharedPrefix, wanted.identifier.substr(0, sharedPrefix.size()))) {
    // The agent's name may follow the prefix as well; the selector's own field decides.
    for (std::size_t i = 0; i < filterCount(); ++i) {
      if (agent(i) == wanted.agent) {
        return {SelectorMatch::sharedSets, i, "shared/" + Selector::fileName(wanted.agent)};
      }
    }
    return {SelectorMatch::unknown, 0, ""};
  }

  for (std::size_t i = 0; i < filterCount(); ++i) {
    const ConstBytes it = slot(i);
    bool found = false;
    switch (wanted.type) {
      case Selector::vnic:
        found = getText(it, FilterRecord::vmUuid, FilterRecord::vmUuidSize) == wanted.identifier &&
                get32(it, FilterRecord::vnicIndex) == wanted.index;
        break;
      case Selector::switchPort: {
        const Nic on = nic(nicOf(i));
        found = on.switchId == wanted.identifier && on.switchPort == wanted.index;
        break;
      }
      case Selector::filter:
        // The selector holds one byte less than its field; a longer name is found by its beginning.
        found = name(i).substr(0, Selector::identifierSize - 1) == wanted.identifier &&
                agent(i) == wanted.agent;
        break;
      case Selector::vif: {
        const auto vif = getText(it, FilterRecord::vif, FilterRecord::vifSize);
        found = !vif.empty() && vif == wanted.identifier &&
                (wanted.agent.empty() || agent(i) == wanted.agent);
        break;
      }
      default:
        break;
    }
    if (found) return {SelectorMatch::filter, i, folderOf(i)};
  }
  return {SelectorMatch::unknown, 0, ""};
}

}  // namespace TarnLab
