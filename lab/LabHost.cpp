#include "LabHost.h"

#include <cerrno>

#include "LabSelector.h"
#include "LabText.h"

namespace TarnLab {

namespace {

// The file "host": a head of 64 bytes, then 1024 bytes for each filter: its record, and at 880 the
// id of its switch and at 944 its port.
constexpr std::string_view magic = "TARNLAB1";
constexpr std::size_t headSize = 64;
constexpr std::size_t headCount = 8, headMemory = 16, headFlows = 24, headFirewallOff = 28;
constexpr std::size_t slotSwitch = 880, slotSwitchSize = 64, slotPort = 944;

constexpr std::string_view sharedPrefix = "shared-addrset-filter-";

}  // namespace

Host Host::load(const Store& store) {
  const auto content = store.read("host", headSize + std::uint64_t{machineLimit} * slotSize);
  if (!content) throw StoreError("no lab at " + store.folder(), ENOENT);
  const ConstBytes bytes = *content;
  if (bytes.size() < headSize || getText(bytes, 0, magic.size()) != magic ||
      (bytes.size() - headSize) / slotSize != get32(bytes, headCount) ||
      (bytes.size() - headSize) % slotSize != 0) {
    throw StoreError("damaged file " + store.path("host"), EINVAL);
  }
  Host host;
  host.memory_ = get64(bytes, headMemory);
  host.flows_ = get32(bytes, headFlows);
  host.firewallOff_ = get8(bytes, headFirewallOff) != 0;
  host.slots_.assign(bytes.begin() + headSize, bytes.end());
  return host;
}

void Host::save(const Store& store) const {
  ByteVector head(headSize);
  std::memcpy(head.data(), magic.data(), magic.size());
  put32(head, headCount, static_cast<std::uint32_t>(filterCount()));
  put64(head, headMemory, memory_);
  put32(head, headFlows, flows_);
  put8(head, headFirewallOff, firewallOff_ ? 1 : 0);
  store.replace("host", {head, slots_});
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

std::string_view Host::switchId(std::size_t index) const {
  return getText(slot(index), slotSwitch, slotSwitchSize);
}

std::uint32_t Host::switchPort(std::size_t index) const { return get32(slot(index), slotPort); }

std::optional<std::size_t> Host::find(std::string_view wanted, std::size_t room) const {
  for (std::size_t i = 0; i < filterCount(); ++i) {
    if (name(i).substr(0, room) == wanted) return i;
  }
  return std::nullopt;
}

std::string Host::folderOf(std::size_t index) { return format("filters/%zu", index); }

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
      case Selector::switchPort:
        found = switchId(i) == wanted.identifier && switchPort(i) == wanted.index;
        break;
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
