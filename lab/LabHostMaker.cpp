// Makes the hosts that "tarnlab init" offers.
#include <string>

#include "LabHost.h"
#include "LabTableEntry.h"
#include "LabText.h"

namespace TarnLab {

namespace {

using Counters = std::uint64_t[FilterRecord::counterCount];

struct NewNic {
  unsigned world;
  const char* name;
  unsigned machine;  // gives the uuid of the machine
  unsigned index;
  bool logical;  // plugged into a logical switch: has a VIF and a logical port
};

struct NewFilter {
  std::size_t nic;  // its place
  const char* agent;
  unsigned slot;
  unsigned slowPath;
  const char* profile;
  std::uint32_t flowFlags;
  unsigned load;  // how much traffic it has seen
};

// A NIC as its bytes stand in the host.
constexpr std::size_t nicWorld = 0, nicIndex = 4, nicPort = 8, nicName = 16, nicMachine = 32,
                      nicSwitch = 96, nicSwitchName = 160, nicVif = 224, nicLsp = 272,
                      shortText = 16, longText = 64, middleText = 48;

constexpr const char* logicalSwitch = "50 2e 7c 11 90 3f 4b 5a-8c 21 d4 0e 6b 77 1f 03";
constexpr const char* otherSwitch = "50 2e 7c 11 90 3f 4b 5a-8c 21 d4 0e 6b 77 1f 2c";

/// The usual host.
constexpr NewNic nics[] = {
    // two web servers
    {1002672, "eth0", 0x632a, 0, true},
    {1002731, "eth0", 0x632b, 0, true},
    // an application server with a second NIC for storage
    {1003044, "eth0", 0x7011, 0, true},
    {1003044, "eth1", 0x7011, 1, true},
    // a database server, not yet seen any traffic
    {1003120, "eth0", 0x7012, 0, true},
    // an old machine on a plain port group
    {998214, "eth0", 0x0451, 0, false},
};
constexpr std::size_t firstWebNic = 0, secondWebNic = 1, oldNic = 5;

constexpr NewFilter filters[] = {
    {0, "kelpco-sfw", 2, 1, "", 0, 240},   {0, "kelpco-inspect", 4, 0, "web-profile", 0, 90},
    {1, "kelpco-sfw", 2, 1, "", 0, 198},   {2, "kelpco-sfw", 2, 2, "", 0x08, 77},
    {3, "kelpco-sfw", 2, 2, "", 0x43, 31}, {4, "kelpco-sfw", 2, 0, "", 0, 0},
    {5, "kelpco-sfw", 2, 3, "", 0, 12},    {5, "kelpco-spoof.guard", 1, 0, "", 0x20, 12},
};

}  // namespace

class HostMaker {
 public:
  explicit HostMaker(Host& host) : host_(host) {}

  void add(const NewNic& nic) {
    host_.nics_.resize(host_.nics_.size() + Host::nicSize);
    const Bytes it = Bytes(host_.nics_).last(Host::nicSize);
    put32(it, nicWorld, nic.world);
    put32(it, nicIndex, nic.index);
    put32(it, nicPort, nic.machine * 10 + nic.index);
    putText(it, nicName, shortText, nic.name);
    putText(
        it, nicMachine, longText,
        format("50 2e 1f 3a c2 1a %02x %02x-4a e1 00 50 56 99 %02x %02x", nic.machine >> 8 & 0xff,
               nic.machine & 0xff, nic.machine * 7 >> 8 & 0xff, nic.machine * 7 & 0xff));
    putText(it, nicSwitch, longText, logicalSwitch);
    putText(it, nicSwitchName, longText, nic.logical ? "production" : "office");
    if (!nic.logical) return;
    putText(it, nicVif, middleText,
            format("8d0c7a10-55f4-4c1e-9b02-%08x%04x", nic.machine, nic.index));
    putText(it, nicLsp, middleText,
            format("c3b1f2e4-7a65-4d0f-8e11-%08x%04x", nic.machine, nic.index));
  }

  void add(const NewFilter& filter) {
    const std::size_t index = host_.addFilter(filter.nic, filter.agent, filter.slot);
    const Bytes slot = host_.slot(index);
    put32(slot, FilterRecord::flowFlags, filter.flowFlags);
    putCounters(slot, filter.load);
    putText(slot, FilterRecord::profile, FilterRecord::profileSize, filter.profile);
    put32(slot, FilterRecord::slowPath, filter.slowPath);
  }

  /// The agent of the firewall: one NIC by name, and every NIC of the host.
  void addFirewall() {
    TableMaker include;
    include.nic(host_.nic(0), 2);
    if (!host_.plan_.firewallOff) include.host(2);
    host_.agents_.push_back({std::string(Host::firewallAgent), include.bytes()});
  }

  /// The other agents of the usual host. Every kind of entry is in a table of one of them, and the
  /// filters are as the tables say.
  void addWatchers() {
    const Nic web = host_.nic(secondWebNic), old = host_.nic(oldNic);
    TableMaker include, exclude, guarded;
    include.nic(host_.nic(firstWebNic), 4).port(web.switchId, web.switchPort);
    include.dvs(otherSwitch).includedSwitch(old.switchName);
    exclude.excludedSwitch(old.switchName).excludedNic(web);
    guarded.nic(old, 1);
    host_.agents_.push_back({"kelpco-inspect", include.bytes(), exclude.bytes()});
    host_.agents_.push_back({"kelpco-spoof.guard", guarded.bytes()});
  }

  void addUsualMachines() {
    for (const NewNic& nic : nics) add(nic);
    if (host_.plan_.bare) return;
    addFirewall();
    addWatchers();
    for (const NewFilter& filter : filters) add(filter);
  }

  void addLikeMachines() {
    for (unsigned i = 0; i < host_.plan_.machines; ++i)
      add(NewNic{1000000 + i, "eth0", i, 0, true});
    if (host_.plan_.bare) return;
    addFirewall();
    for (unsigned i = 0; i < host_.plan_.machines; ++i) {
      add(NewFilter{i, "kelpco-sfw", 2, i % 4, "", 0, i % 300});
    }
  }

 private:
  /// Counters that agree with each other as those of a filter at work do.
  static void putCounters(Bytes slot, unsigned load) {
    const std::uint64_t in = std::uint64_t{load} * 15731;
    const std::uint64_t out = std::uint64_t{load} * 9973;
    const Counters counters = {
        in * 3 / 2,
        out * 4 / 3,  // time in microseconds
        in,
        out,  // packets
        load * 812ull,
        load * 640ull,  // slow-path time
        load * 17ull,
        load * 13ull,  // back from the slow path
        in + load,
        out + load,  // received from the framework
        load * 18ull,
        load * 14ull,  // punted
        load * 5ull,
        load * 4ull,  // copied
        load / 3,
        load / 5,  // failure policy
        0,
        load / 7,
        load * 2ull,
        0,
        load / 11,
        0,
        load / 4,
        0,  // malformed packets
        load / 2,
        load / 9,
        0,
        0,  // rejects that failed
        load * 3ull,
        load * 2ull,
        load / 6,
        load / 8,  // by reputation
    };
    for (std::size_t i = 0; i < FilterRecord::counterCount; ++i) {
      put64(slot, FilterRecord::counters + 8 * i, counters[i]);
    }
    const std::uint32_t rates[FilterRecord::rateCount] = {load / 10, load / 4, load / 8,
                                                          load / 2,  load / 3, load};
    for (std::size_t i = 0; i < FilterRecord::rateCount; ++i) {
      put32(slot, FilterRecord::rates + 4 * i, rates[i]);
    }
  }

  Host& host_;
};

Host Host::make(const HostPlan& plan) {
  Host host;
  host.plan_ = plan;
  HostMaker maker(host);
  plan.machines == 0 ? maker.addUsualMachines() : maker.addLikeMachines();
  return host;
}

Nic Host::nic(std::size_t place) const {
  const ConstBytes it = part(ConstBytes(nics_), place * nicSize, nicSize);
  return {.world = get32(it, nicWorld),
          .index = get32(it, nicIndex),
          .name = getText(it, nicName, shortText),
          .machine = getText(it, nicMachine, longText),
          .switchId = getText(it, nicSwitch, longText),
          .switchName = getText(it, nicSwitchName, longText),
          .switchPort = get32(it, nicPort),
          .vif = getText(it, nicVif, middleText),
          .lsp = getText(it, nicLsp, middleText)};
}

}  // namespace TarnLab
