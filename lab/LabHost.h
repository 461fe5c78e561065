// The host that a lab plays: its virtual NICs and the filters on them.
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

/// The filters in the kernel's order, and what the host was made with. Kept in the file "host".
class Host {
 public:
  /// The usual small host.
  static Host sample();

  static constexpr unsigned machineLimit = 100000;

  /// A host of so many virtual machines with one filter each, for trying sizes.
  static Host generated(unsigned machines);

  /// Reads the lab's host; throws StoreError when there is none or it is damaged.
  static Host load(const Store& store);

  /// Replaces the lab's host. Hold the lock.
  void save(const Store& store) const;

  std::size_t filterCount() const { return slots_.size() / slotSize; }

  /// The filter record as it is listed. Whether rules are configured is the caller's to fill in.
  ConstBytes record(std::size_t index) const;
  std::string_view name(std::size_t index) const;
  std::string_view agent(std::size_t index) const;

  /// Whether the virtual NIC is plugged into a logical switch; otherwise into a plain port group.
  bool isLogical(std::size_t index) const;

  /// How much traffic the filter has seen. The models make their counters of it.
  std::uint64_t load(std::size_t index) const;

  /// The id and the port of the switch that the virtual NIC is plugged into.
  std::string_view switchId(std::size_t index) const;
  std::uint32_t switchPort(std::size_t index) const;

  /// The filter of that name, which may be cut to as many characters as a request has room for;
  /// nothing when there is none.
  std::optional<std::size_t> find(std::string_view wanted, std::size_t room) const;

  /// Whether it is the filter of the usual host that has one of everything.
  bool isShowpiece(std::size_t index) const { return name(index) == showpiece; }

  /// Folder of the filter's state in the lab.
  static std::string folderOf(std::size_t index);

  /// Finds what the 100 bytes of a selector name.
  SelectedFilter select(ConstBytes selector) const;

  /// The largest set, in bytes, that the host has memory for.
  std::uint64_t memory() const { return memory_; }
  void setMemory(std::uint64_t bytes) { memory_ = bytes; }

  /// How many flows a filter of a fresh host has: those of the usual host as much as befits its
  /// traffic.
  static constexpr std::uint32_t usualFlows = 0xffffffff;
  static constexpr std::uint32_t flowLimit = 1000000;
  std::uint32_t flows() const { return flows_; }
  void setFlows(std::uint32_t ofEachFilter) { flows_ = ofEachFilter; }

  /// Whether the distributed firewall is off: no agent includes every virtual NIC of the host.
  bool firewallOff() const { return firewallOff_; }
  void setFirewallOff(bool off) { firewallOff_ = off; }

 private:
  static constexpr std::string_view showpiece = "nic-1002672-eth0-kelpco-sfw.2";
  friend class HostMaker;
  static constexpr std::size_t slotSize = 1024;
  Bytes slot(std::size_t index) { return part(Bytes(slots_), index * slotSize, slotSize); }
  ConstBytes slot(std::size_t index) const {
    return part(ConstBytes(slots_), index * slotSize, slotSize);
  }

  ByteVector slots_;
  std::uint64_t memory_ = std::uint64_t{1} << 30;
  std::uint32_t flows_ = 0;
  bool firewallOff_ = false;
};

}  // namespace TarnLab

#endif
