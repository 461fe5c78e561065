// The host that a lab plays: the virtual NICs of its machines, and the filters on them.
#ifndef TARNLAB_HOST_H
#define TARNLAB_HOST_H

#include <optional>

#include "LabStore.h"

namespace TarnLab {

/// Offsets in a filter record as the kernel lists it.
namespace FilterRecord {
inline constexpr std::size_t size = 866;
inline constexpr std::size_t oldSize = 734;  // the older interface ends after the counters
inline constexpr std::size_t name = 0, nameSize = 204;
inline constexpr std::size_t agent = 204, agentSize = 100;
inline constexpr std::size_t vmUuid = 304, vmUuidSize = 128;
inline constexpr std::size_t vnicIndex = 432;
inline constexpr std::size_t flowFlags = 436;
inline constexpr std::size_t counters = 448, counterCount = 32;
inline constexpr std::size_t rates = 704, rateCount = 6;
inline constexpr std::size_t profile = 728, profileSize = 32;
inline constexpr std::size_t hash = 760;
inline constexpr std::size_t slowPath = 762;
inline constexpr std::size_t configured = 766;
inline constexpr std::size_t vif = 770, vifSize = 48;
inline constexpr std::size_t lsp = 818, lspSize = 48;
}  // namespace FilterRecord

/// What a request's selector names.
enum class SelectorMatch { none, filter, sharedSets, unknown };

struct SelectedFilter {
  SelectorMatch match = SelectorMatch::none;
  std::size_t index = 0;  // of the filter; of one filter of the agent for its shared sets
  std::string folder;     // where the state of the filter or of the agent's shared sets lives
};

/// A virtual NIC of a machine. The texts live as long as the host.
struct Nic {
  std::uint32_t world = 0;    // of the machine
  std::uint32_t index = 0;    // on the machine
  std::string_view name;      // such as eth0
  std::string_view machine;   // the machine's uuid, "50 2e 1f ... 2a-4a e1 ... 26"
  std::string_view switchId;  // of the switch that it is plugged into, in the same form
  std::string_view switchName;
  std::uint32_t switchPort = 0;
  std::string_view vif, lsp;  // empty on a plain port group
};

/// An owner of filters. Its tables say which virtual NICs get one; their entries stand as the
/// filter table device has them.
struct Agent {
  std::string name;
  ByteVector include = {}, exclude = {};
};

/// How many filters and flows a fresh host has, and what else it is made with.
struct HostPlan {
  std::uint32_t machines = 0;  // like ones; 0 for those of the usual host
  std::uint64_t memory = std::uint64_t{1} << 30;
  std::uint32_t flows = 0xffffffff;  // of each filter; Host::usualFlows
  bool firewallOff = false;          // no agent includes every virtual NIC of the host
  bool bare = false;                 // machines without agents and filters
};

/// The machines, agents and filters, these in the kernel's order, and what the host was made with.
/// Kept in the file "host".
class Host {
 public:
  static Host make(const HostPlan& plan);

  /// The usual small host.
  static Host sample() { return make({}); }

  static constexpr unsigned machineLimit = 100000;

  /// A host of so many virtual machines with one filter each, for trying sizes.
  static Host generated(unsigned machines) { return make({.machines = machines, .flows = 0}); }

  /// Reads the lab's host; throws StoreError when there is none or it is damaged.
  static Host load(const Store& store);

  /// Replaces the lab's host. Hold the lock.
  void save(const Store& store) const;

  const HostPlan& plan() const { return plan_; }

  std::size_t filterCount() const { return slots_.size() / slotSize; }

  /// The filter record as it is listed. Whether rules are configured is the caller's to fill in.
  ConstBytes record(std::size_t index) const;
  std::string_view name(std::size_t index) const;
  std::string_view agent(std::size_t index) const;

  /// Whether the virtual NIC is plugged into a logical switch; otherwise into a plain port group.
  bool isLogical(std::size_t index) const;

  /// How much traffic the filter has seen. The models make their counters of it.
  std::uint64_t load(std::size_t index) const;

  /// The place of the virtual NIC that the filter is on, and the slot that it has there.
  std::size_t nicOf(std::size_t index) const;
  std::uint32_t slotOf(std::size_t index) const;

  /// Whether the filter sees the traffic of its virtual NIC. One that does not is there until
  /// disconnected filters are destroyed.
  bool isConnected(std::size_t index) const;
  void connect(std::size_t index, bool connected);

  /// Adds a filter that has not seen any traffic, after all others, and returns its index.
  std::size_t addFilter(std::size_t nic, std::string_view agent, std::uint32_t slot);

  /// Takes a filter away; those after it move up. Its folder is the caller's to remove.
  void removeFilter(std::size_t index);

  /// The filter of that name, which may be cut to as many characters as a request has room for;
  /// nothing when there is none.
  std::optional<std::size_t> find(std::string_view wanted, std::size_t room) const;

  /// Whether it is the filter of the usual host that has one of everything.
  bool isShowpiece(std::size_t index) const { return name(index) == showpiece; }

  /// Folder of the filter's state in the lab. It stays the same when other filters go.
  std::string folderOf(std::size_t index) const;

  std::size_t nicCount() const { return nics_.size() / nicSize; }
  Nic nic(std::size_t place) const;

  std::vector<Agent>& agents() { return agents_; }
  const std::vector<Agent>& agents() const { return agents_; }

  /// The place of the agent whose name, cut to so many characters, is the wanted one.
  std::optional<std::size_t> findAgent(std::string_view wanted, std::size_t room) const;

  /// Finds what the 100 bytes of a selector name.
  SelectedFilter select(ConstBytes selector) const;

  /// The largest set, in bytes, that the host has memory for.
  std::uint64_t memory() const { return plan_.memory; }
  void setMemory(std::uint64_t bytes) { plan_.memory = bytes; }

  /// How many flows a filter of a fresh host has: those of the usual host as much as befits its
  /// traffic.
  static constexpr std::uint32_t usualFlows = 0xffffffff;
  static constexpr std::uint32_t flowLimit = 1000000;
  std::uint32_t flows() const { return plan_.flows; }
  void setFlows(std::uint32_t ofEachFilter) { plan_.flows = ofEachFilter; }

  /// The agent of the distributed firewall.
  static constexpr std::string_view firewallAgent = "kelpco-sfw";

 private:
  static constexpr std::string_view showpiece = "nic-1002672-eth0-kelpco-sfw.2";
  friend class HostMaker;
  static constexpr std::size_t slotSize = 1024, nicSize = 512;
  Bytes slot(std::size_t index) { return part(Bytes(slots_), index * slotSize, slotSize); }
  ConstBytes slot(std::size_t index) const {
    return part(ConstBytes(slots_), index * slotSize, slotSize);
  }

  ByteVector slots_;
  ByteVector nics_;
  std::vector<Agent> agents_;
  HostPlan plan_;
  std::uint32_t nextNumber_ = 0;  // of the folder of the next filter
};

}  // namespace TarnLab

#endif
