// Requests 10 and 11 of the filter table device: applying the tables to a machine, and destroying
// the filters that this has disconnected.
#include <cerrno>

#include "LabFamily.h"
#include "LabServiceInsertion.h"
#include "LabTableEntry.h"

namespace TarnLab {

namespace {

// Of a revalidation, 20 bytes.
constexpr std::size_t revalidationSize = 20;
constexpr U32 world{0, "world"};
constexpr Blob machine{4, 16, "machine"};

// Of the destruction, the frame of entries.
constexpr std::size_t entryFrame = 52, agentSize = 40;
constexpr Name agent{0, agentSize, "agent", "agent"};
constexpr U32 given{48, "bytes"};

/// The slot that the agent's filter has on the NIC; nothing when it has none there. The exclude
/// table comes before the include table; of the entries there the first one decides.
std::optional<std::uint32_t> wantedSlot(const Agent& owner, const Nic& nic) {
  for (const TableEntry& entry : entriesOf(owner.exclude)) {
    if (entry.covers(nic)) return std::nullopt;
  }
  for (const TableEntry& entry : entriesOf(owner.include)) {
    if (entry.covers(nic)) return entry.slot();
  }
  return std::nullopt;
}

/// Makes the filters of the NIC what the tables say. Returns the words for what that was.
std::vector<std::string> applyTables(Host& host, std::size_t place) {
  std::vector<std::string> done;
  const auto note = [&](const char* what, std::size_t index) {
    done.push_back(what + std::string(host.name(index)));
  };
  for (const Agent& owner : host.agents()) {
    const auto slot = wantedSlot(owner, host.nic(place));
    bool there = false;
    for (std::size_t i = 0; i < host.filterCount(); ++i) {
      if (host.nicOf(i) != place || host.agent(i) != owner.name) continue;
      const bool wanted = slot && host.slotOf(i) == *slot;
      there = there || wanted;
      if (host.isConnected(i) == wanted) continue;
      host.connect(i, wanted);
      note(wanted ? "connected " : "disconnected ", i);
    }
    if (slot && !there) note("made ", host.addFilter(place, owner.name, *slot));
  }
  return done;
}

std::string joined(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words) text += (text.empty() ? "" : ", ") + word;
  return text;
}

int revalidate(Request& request, Body& body) {
  Host host = request.host;
  bool found = false;
  std::vector<std::string> done;
  for (std::size_t place = 0; place < host.nicCount(); ++place) {
    const Nic nic = host.nic(place);
    if (nic.world != world.get(body)) continue;
    found = true;
    const ConstBytes wanted = machine.get(body);
    if (idOf(nic.machine) != ByteVector(wanted.begin(), wanted.end())) {
      return request.refuse(ENOENT, format("world %u is another machine", nic.world));
    }
    for (std::string& each : applyTables(host, place)) done.push_back(std::move(each));
  }
  if (!found) return request.refuse(ENOENT, format("no machine of world %u", world.get(body)));
  request.entry.note = joined(done);
  if (!done.empty()) host.save(request.store);
  return 0;
}

int destroyDisconnected(Request& request, Body& body) {
  const std::string_view owner = agent.get(body);
  if (!request.host.findAgent(owner, agentSize - 1)) {
    return request.refuse(ENOENT, "no agent " + std::string(owner));
  }
  if (given.get(body) != 0) {
    return request.refuse(EINVAL, format("buffer of %u bytes", given.get(body)));
  }
  Host host = request.host;
  std::vector<std::string> done, folders;
  for (std::size_t i = host.filterCount(); i-- > 0;) {
    if (host.isConnected(i) || host.agent(i).substr(0, agentSize - 1) != owner) continue;
    done.insert(done.begin(), "destroyed " + std::string(host.name(i)));
    folders.push_back(host.folderOf(i));
    host.removeFilter(i);
  }
  request.entry.note = joined(done);
  if (done.empty()) return 0;
  host.save(request.store);
  for (const std::string& folder : folders) request.store.removeTree(folder);
  settleServiceInstances(request.store, host);
  return 0;
}

std::string machineText(ConstBytes body) {
  return format(" of world %u, ", world.get(body)) + idText(machine.get(body));
}

constexpr DirectKind requests[] = {
    {.device = Device::filterTables,
     .number = 10,
     .title = "revalidate the machine",
     .size = revalidationSize,
     .answer = revalidate,
     .asked = machineText},
    {.device = Device::filterTables,
     .number = 11,
     .title = "destroy disconnected filters",
     .size = entryFrame,
     .answer = destroyDisconnected,
     .request = {agent}},
};

}  // namespace

constinit const Family revalidationFamily{.requests = requests};

}  // namespace TarnLab
