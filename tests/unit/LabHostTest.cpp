#include <gtest/gtest.h>

#include <fstream>

#include "LabBench.h"
#include "LabHost.h"
#include "LabTableEntry.h"

namespace TarnLab {
namespace {

class LabHost : public LabBench {
 protected:
  ByteVector content() const { return store.read("host", 1 << 20).value_or(ByteVector()); }
  void write(ConstBytes bytes) const {
    std::ofstream file(store.path("host"), std::ios::trunc | std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
  }
};

constexpr std::size_t filtersAt = 64, filterBytes = 1024, nicsAt = filtersAt + 8 * filterBytes,
                      nicBytes = 512, agentsAt = nicsAt + 6 * nicBytes;

TEST_F(LabHost, IsReadAsItWasWritten) {
  Host host = Host::make({.machines = 3, .memory = 4096, .flows = 7, .firewallOff = true});
  host.agents().push_back({"100%d", TableMaker().host(9).bytes(), {}});
  host.connect(1, false);
  host.save(store);
  const ByteVector before = content();
  const Host again = Host::load(store);
  again.save(store);
  EXPECT_EQ(content(), before);
  EXPECT_EQ(again.filterCount(), 3u);
  EXPECT_EQ(again.nicCount(), 3u);
  EXPECT_FALSE(again.isConnected(1));
  EXPECT_EQ(again.agents().back().name, "100%d");
  EXPECT_EQ(again.agents().back().include, TableMaker().host(9).bytes());
  EXPECT_EQ(again.plan().machines, 3u);
  EXPECT_EQ(again.memory(), 4096u);
  EXPECT_EQ(again.flows(), 7u);
  EXPECT_TRUE(again.plan().firewallOff);
  EXPECT_FALSE(again.plan().bare);
}

TEST_F(LabHost, AFileThatEndsEarlyIsDamaged) {
  const ByteVector whole = content();
  ASSERT_GT(whole.size(), agentsAt);
  for (std::size_t size = 0; size < whole.size(); size += size < agentsAt ? 61 : 1) {
    write(ConstBytes(whole).first(size));
    EXPECT_THROW(Host::load(store), StoreError) << size;
  }
  write(whole);
  EXPECT_EQ(Host::load(store).filterCount(), 8u);
}

TEST_F(LabHost, CountsAndSizesThatDoNotAgreeAreDamage) {
  const ByteVector whole = content();
  for (const std::size_t at :
       {std::size_t{8}, std::size_t{12}, std::size_t{40}, agentsAt, agentsAt + 4, agentsAt + 8}) {
    for (const std::uint32_t value : {0u, 7u, 0xffffffffu}) {
      ByteVector bytes = whole;
      if (get32(bytes, at) == value) continue;
      put32(bytes, at, value);
      write(bytes);
      EXPECT_THROW(Host::load(store), StoreError) << at << " " << value;
    }
  }
  write(Record().bytes(whole).u8(0));
  EXPECT_THROW(Host::load(store), StoreError) << "a byte too many";
}

TEST_F(LabHost, AFilterIsOnANicOfTheHost) {
  ByteVector bytes = content();
  put32(bytes, filtersAt + 884, 6);
  write(bytes);
  EXPECT_THROW(Host::load(store), StoreError);
}

TEST_F(LabHost, AFilterKeepsItsFolderWhenOthersGo) {
  Host host = Host::sample();
  const std::string last = host.folderOf(7);
  EXPECT_EQ(host.folderOf(0), "filters/0");
  host.removeFilter(7);
  host.removeFilter(0);
  EXPECT_EQ(host.filterCount(), 6u);
  EXPECT_EQ(host.name(0), "nic-1002672-eth0-kelpco-inspect.4");
  EXPECT_EQ(host.folderOf(0), "filters/1");
  host.save(store);
  Host again = Host::load(store);
  EXPECT_EQ(again.addFilter(0, "kelpco-sfw", 2), 6u);
  EXPECT_EQ(again.name(6), web);
  EXPECT_NE(again.folderOf(6), last) << "the number of one that is gone is not given again";
}

TEST_F(LabHost, ABareOneHasItsMachinesOnly) {
  for (const std::uint32_t machines : {0u, 4u}) {
    const Host host = Host::make({.machines = machines, .bare = true});
    EXPECT_EQ(host.nicCount(), machines == 0 ? 6u : 4u);
    EXPECT_EQ(host.filterCount(), 0u);
    EXPECT_TRUE(host.agents().empty());
  }
}

TEST_F(LabHost, ANicIsDescribedWhole) {
  const Host host = Host::sample();
  const Nic storage = host.nic(3), old = host.nic(5);
  EXPECT_EQ(storage.world, 1003044u);
  EXPECT_EQ(storage.index, 1u);
  EXPECT_EQ(storage.name, "eth1");
  EXPECT_EQ(storage.machine, "50 2e 1f 3a c2 1a 70 11-4a e1 00 50 56 99 10 77");
  EXPECT_EQ(storage.switchId, "50 2e 7c 11 90 3f 4b 5a-8c 21 d4 0e 6b 77 1f 03");
  EXPECT_EQ(storage.switchName, "production");
  EXPECT_EQ(storage.switchPort, 0x7011u * 10 + 1);
  EXPECT_EQ(storage.vif, "8d0c7a10-55f4-4c1e-9b02-000070110001");
  EXPECT_EQ(storage.lsp, "c3b1f2e4-7a65-4d0f-8e11-000070110001");
  EXPECT_EQ(old.switchName, "office");
  EXPECT_EQ(old.vif, "");
}

}  // namespace
}  // namespace TarnLab
