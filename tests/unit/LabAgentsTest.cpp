#include <gtest/gtest.h>

#include <cerrno>

#include "LabBench.h"
#include "LabDecode.h"
#include "LabSettings.h"

namespace TarnLab {
namespace {

class LabAgents : public LabBench {
 protected:
  int create(const std::string& name) { return named(23, name); }
  int destroy(const std::string& name) { return named(24, name); }
  int named(std::uint32_t number, const std::string& name) {
    ByteVector body = Record().text(name, 100);
    return direct(number, body);
  }

  std::vector<std::string> agents() const {
    std::vector<std::string> names;
    const Host host = Host::load(store);
    for (const Agent& agent : host.agents()) names.push_back(agent.name);
    return names;
  }
  using Names = std::vector<std::string>;
};

TEST_F(LabAgents, AreCreatedAndDestroyed) {
  ASSERT_EQ(create("kelpco-guest"), 0);
  EXPECT_EQ(agents(),
            (Names{"kelpco-sfw", "kelpco-inspect", "kelpco-spoof.guard", "kelpco-guest"}));
  EXPECT_EQ(decodeRequest(journal().back()),
            "firewall 23: create agent(name \"kelpco-guest\") = ok");
  ByteVector frame = Record().text("kelpco-guest", 40).u32(9);
  EXPECT_EQ(model.request(Device::filterTables, 8, reinterpret_cast<std::uintptr_t>(frame.data())),
            0);
  EXPECT_EQ(get32(frame, 40), 0u) << "its tables are empty";
  ASSERT_EQ(destroy("kelpco-guest"), 0);
  EXPECT_EQ(agents(), (Names{"kelpco-sfw", "kelpco-inspect", "kelpco-spoof.guard"}));
  EXPECT_EQ(destroy("kelpco-guest"), ENOENT);
  EXPECT_EQ(note(), "no agent kelpco-guest");
}

TEST_F(LabAgents, HaveNamesOfTheirOwn) {
  EXPECT_EQ(create(""), EINVAL);
  EXPECT_EQ(create("kelpco-sfw"), EEXIST);
  EXPECT_EQ(note(), "agent kelpco-sfw");
  ASSERT_EQ(create(std::string(39, 'a') + "1"), 0);
  EXPECT_EQ(create(std::string(39, 'a') + "2"), EEXIST) << "the table device has 39 characters";
  ASSERT_EQ(create(std::string(38, 'a') + "2"), 0);
  ASSERT_EQ(create("100%d\x01"), 0);
  EXPECT_EQ(agents().back(), "100%d\x01");
  EXPECT_EQ(destroy("kelpco"), ENOENT) << "the beginning of a name is none";
}

TEST_F(LabAgents, WithFiltersAreNotDestroyed) {
  EXPECT_EQ(destroy("kelpco-sfw"), EBUSY);
  EXPECT_EQ(note(), "it has 6 filters");
  EXPECT_EQ(agents().front(), "kelpco-sfw");
}

TEST_F(LabAgents, TakeTheirSharedSetsAlong) {
  ASSERT_EQ(command(13, Record().text("web", 38).u64(0).u32(0).u32(1).u32(0).u8(3).to(86),
                    filterSelector("shared-addrset-filter-kelpco-inspect", "kelpco-inspect")),
            0u);
  EXPECT_TRUE(store.exists("shared/kelpco-inspect"));
  Host host = Host::load(store);
  host.removeFilter(1);
  host.save(store);
  ASSERT_EQ(destroy("kelpco-inspect"), 0) << note();
  EXPECT_FALSE(store.exists("shared/kelpco-inspect"));
}

TEST_F(LabAgents, RequestsAreChecked) {
  for (const std::uint32_t number : {23u, 24u}) {
    for (const std::size_t size : {std::size_t{0}, std::size_t{99}, std::size_t{101}}) {
      ByteVector body(size);
      EXPECT_EQ(direct(number, body), EINVAL) << size;
    }
    EXPECT_EQ(named(number, std::string(100, 'a')), EINVAL);
    EXPECT_EQ(note(), "agent name is not padded with zeros");
    ByteVector body = Record().text("a", 100).set(99, 'b');
    EXPECT_EQ(direct(number, body), EINVAL);
  }
}

TEST_F(LabAgents, RegistrationHasNoBodyAndTakesAwayTheStatus) {
  const auto registered = [this](unsigned status, unsigned length) {
    ByteVector frame = Record().u32(41).u32(status).u32(length).u64(0);
    const int error =
        model.request(Device::firewall, 41, reinterpret_cast<std::uintptr_t>(frame.data()));
    EXPECT_EQ(get32(frame, 4), error == 0 ? 0 : status);
    return error;
  };
  EXPECT_EQ(registered(0, 0), EINVAL);
  EXPECT_EQ(registered(0xbad0001, 1), EINVAL);
  EXPECT_TRUE(Settings::load(store, Settings::ofHost).lines().empty());
  EXPECT_EQ(registered(0xbad0001, 0), 0);
  EXPECT_EQ(Settings::load(store, Settings::ofHost).lines(),
            (Names{"the host's agent is registered"}));
  EXPECT_EQ(decodeRequest(journal().back()), "firewall 41: register the agent() = ok");
}

}  // namespace
}  // namespace TarnLab
