// Makes the hosts that "tarnlab init" offers.
#include <string>

#include "LabHost.h"
#include "LabText.h"

namespace TarnLab {

namespace {

using Counters = std::uint64_t[FilterRecord::counterCount];

struct NewFilter {
  unsigned world;
  const char* nic;
  const char* agent;
  unsigned slot;
  unsigned machine;  // gives the uuid of the machine
  unsigned nicIndex;
  int slowPath;
  bool logical;  // plugged into a logical switch: has a VIF and a logical port
  const char* profile;
  std::uint32_t flowFlags;
  unsigned load;  // how much traffic it has seen
};

}  // namespace

class HostMaker {
 public:
  explicit HostMaker(Host& host) : host_(host) {}

  void add(const NewFilter& filter) {
    host_.slots_.resize(host_.slots_.size() + Host::slotSize);
    const Bytes slot = host_.slot(host_.filterCount() - 1);
    putText(slot, FilterRecord::name, FilterRecord::nameSize,
            format("nic-%u-%s-%s.%u", filter.world, filter.nic, filter.agent, filter.slot));
    putText(slot, FilterRecord::agent, FilterRecord::agentSize, filter.agent);
    putText(slot, FilterRecord::vmUuid, FilterRecord::vmUuidSize,
            format("50 2e 1f 3a c2 1a %02x %02x-4a e1 00 50 56 99 %02x %02x",
                   filter.machine >> 8 & 0xff, filter.machine & 0xff,
                   filter.machine * 7 >> 8 & 0xff, filter.machine * 7 & 0xff));
    put32(slot, FilterRecord::vnicIndex, filter.nicIndex);
    put32(slot, FilterRecord::flowFlags, filter.flowFlags);
    putCounters(slot, filter.load);
    putText(slot, FilterRecord::profile, FilterRecord::profileSize, filter.profile);
    put16(slot, FilterRecord::hash, static_cast<std::uint16_t>(filter.world * 31 + filter.slot));
    put32(slot, FilterRecord::slowPath, static_cast<std::uint32_t>(filter.slowPath));
    if (filter.logical) {
      putText(slot, FilterRecord::vif, FilterRecord::vifSize,
              format("8d0c7a10-55f4-4c1e-9b02-%08x%04x", filter.machine, filter.nicIndex));
      putText(slot, FilterRecord::lsp, FilterRecord::lspSize,
              format("c3b1f2e4-7a65-4d0f-8e11-%08x%04x", filter.machine, filter.nicIndex));
    }
    putText(slot, 880, 64, "50 2e 7c 11 90 3f 4b 5a-8c 21 d4 0e 6b 77 1f 03");
    put32(slot, 944, filter.machine * 10 + filter.nicIndex);
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

Host Host::sample() {
  static constexpr NewFilter filters[] = {
      // two web servers
      {1002672, "eth0", "kelpco-sfw", 2, 0x632a, 0, 1, true, "", 0, 240},
      {1002672, "eth0", "kelpco-inspect", 4, 0x632a, 0, 0, true, "web-profile", 0, 90},
      {1002731, "eth0", "kelpco-sfw", 2, 0x632b, 0, 1, true, "", 0, 198},
      // an application server with a second NIC for storage
      {1003044, "eth0", "kelpco-sfw", 2, 0x7011, 0, 2, true, "", 0x08, 77},
      {1003044, "eth1", "kelpco-sfw", 2, 0x7011, 1, 2, true, "", 0x43, 31},
      // a database server, not yet seen any traffic
      {1003120, "eth0", "kelpco-sfw", 2, 0x7012, 0, 0, true, "", 0, 0},
      // an old machine on a plain port group, and what watches it
      {998214, "eth0", "kelpco-sfw", 2, 0x0451, 0, 3, false, "", 0, 12},
      {998214, "eth0", "kelpco-spoof.guard", 1, 0x0451, 0, 0, false, "", 0x20, 12},
  };
  Host host;
  host.setFlows(usualFlows);
  HostMaker maker(host);
  for (const NewFilter& filter : filters) maker.add(filter);
  return host;
}

Host Host::generated(unsigned machines) {
  Host host;
  HostMaker maker(host);
  for (unsigned i = 0; i < machines; ++i) {
    maker.add({1000000 + i, "eth0", "kelpco-sfw", 2, i, 0, static_cast<int>(i % 4), true, "", 0,
               i % 300});
  }
  return host;
}

}  // namespace TarnLab
