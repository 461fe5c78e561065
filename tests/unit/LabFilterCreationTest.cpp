#include <gtest/gtest.h>

#include <cerrno>

#include "LabBench.h"
#include "LabDecode.h"
#include "LabSettings.h"

namespace TarnLab {
namespace {

constexpr const char* vnic = "502e1f3a-c21a-632a-4ae1-00505699b626.000";
constexpr unsigned world = 1002672;

/// The parameters of a configuration, which fill its 16 slots of 260 bytes.
struct Parameters {
  std::vector<std::string> texts = {};
  unsigned policy = 0;
};

struct Wanted {
  std::string agent = "kelpco-sfw";
  unsigned ofWorld = world;
  unsigned slot = 3;
  std::string nic = vnic;
  unsigned add = 1;
};

Record body(const Wanted& wanted = {}, const Parameters& parameters = {}) {
  Record record;
  record.text(wanted.agent, 40).u32(parameters.texts.size()).u32(parameters.policy);
  unsigned number = 0;
  for (const std::string& text : parameters.texts) record.u32(number++).text(text, 256);
  return record.to(4208).u32(wanted.ofWorld).u32(wanted.slot).text(wanted.nic, 64).u32(wanted.add);
}

class LabFilterCreation : public LabBench {
 protected:
  /// Returns 0 or an errno; the frame's status is in `status`.
  int ask(const Record& record) {
    ByteVector sent = record;
    const auto address = reinterpret_cast<std::uintptr_t>(sent.data());
    ByteVector frame = Record().u32(1000).u32(0).u32(sent.size()).u64(address);
    const int error =
        model.request(Device::firewall, 1000, reinterpret_cast<std::uintptr_t>(frame.data()));
    status = get32(frame, 4);
    return error;
  }
  unsigned status = 0;
  static constexpr const char* added = "nic-1002672-eth0-kelpco-sfw.3";
};

TEST_F(LabFilterCreation, AFilterIsMadeAndDestroyed) {
  ASSERT_EQ(ask(body()), 0) << note();
  EXPECT_EQ(status, 0u);
  EXPECT_EQ(
      decodeRequest(journal().back()),
      "firewall 1000: create or destroy a filter(agent \"kelpco-sfw\", parameters 0, policy 0, "
      "world 1002672, slot 3, vnic \"502e1f3a-c21a-632a-4ae1-00505699b626.000\", add 1) = ok "
      "(made nic-1002672-eth0-kelpco-sfw.3)");
  Host host = Host::load(store);
  ASSERT_EQ(host.filterCount(), 9u);
  EXPECT_EQ(host.name(8), added);
  EXPECT_EQ(host.agent(8), "kelpco-sfw");
  EXPECT_TRUE(host.isConnected(8));
  ASSERT_EQ(command(31, Record().u8(1), filterSelector(added)), 0u);
  ASSERT_EQ(ask(body({.add = 0})), 0);
  EXPECT_EQ(status, 0u);
  EXPECT_EQ(note(), std::string("destroyed ") + added);
  EXPECT_EQ(Host::load(store).filterCount(), 8u);
  EXPECT_FALSE(store.exists(host.folderOf(8)));
}

TEST_F(LabFilterCreation, TheConfigurationIsTheFilters) {
  ASSERT_EQ(ask(body({}, {{"one", "100%s two"}, 1})), 0) << note();
  const Host host = Host::load(store);
  EXPECT_EQ(Settings::load(store, host.folderOf(8)).lines(),
            (std::vector<std::string>{"parameter.0: \"one\"", "parameter.1: \"100%s two\"",
                                      "traffic is dropped while rules cannot be enforced"}));
  EXPECT_EQ(decodeRecords(journal().back()), "    parameter 0: one\n    parameter 1: 100%s two\n");
  ASSERT_EQ(command(35, Record().u8(7), filterSelector(added)), 0u);
  EXPECT_EQ(reply, (const ByteVector&)Record().u8(1));
}

TEST_F(LabFilterCreation, ThereIsRoomForSixteenParameters) {
  const Parameters most{std::vector<std::string>(16, std::string(255, 'p'))};
  ASSERT_EQ(ask(body({}, most)), 0) << note();
  EXPECT_EQ(Settings::load(store, Host::load(store).folderOf(8)).lines().size(), 16u);
  EXPECT_EQ(ask(Record().bytes(body()).set(40, 17)), EINVAL);
  EXPECT_EQ(note(), "17 parameters");
}

TEST_F(LabFilterCreation, WhatCannotBeIsAStatus) {
  struct {
    Wanted wanted;
    unsigned status;
    const char* note;
  } const rows[] = {
      {{.slot = 2}, 26, "nic-1002672-eth0-kelpco-sfw.2 is there"},
      {{.add = 0}, 21, "no such filter"},
      {{.agent = "nobody"}, 3, "no agent nobody"},
      {{.agent = ""}, 3, "no agent "},
      {{.ofWorld = 1002731}, 48, "this vnic is one of world 1002672"},
      {{.nic = "502e1f3a-c21a-632a-4ae1-00505699b626.001"}, 48, "no such vnic"},
      {{.nic = ""}, 48, "no such vnic"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(ask(body(row.wanted)), 0) << row.note;
    EXPECT_EQ(status, row.status) << row.note;
    EXPECT_EQ(note(), row.note);
  }
  EXPECT_EQ(Host::load(store).filterCount(), 8u);
}

TEST_F(LabFilterCreation, AnAgentIsKnownByTheBeginningOfItsName) {
  const std::string whole(99, 'a'), beginning(39, 'a');
  ByteVector agent = Record().text(whole, 100);
  ASSERT_EQ(direct(23, agent), 0);
  ASSERT_EQ(ask(body({.agent = beginning})), 0);
  EXPECT_EQ(status, 0u) << note();
  EXPECT_EQ(Host::load(store).agent(8), whole);
  ASSERT_EQ(ask(body({.agent = beginning})), 0);
  EXPECT_EQ(status, 26u) << "it is there";
  ASSERT_EQ(ask(body({.agent = beginning, .add = 0})), 0);
  EXPECT_EQ(status, 0u) << note();
  EXPECT_EQ(Host::load(store).filterCount(), 8u);
}

TEST_F(LabFilterCreation, WhatIsWrongInItsFormIsRefused) {
  const Parameters two{{"one", "two"}};
  struct {
    Record record;
    const char* note;
  } const rows[] = {
      {Record().bytes(body()).zero(1), "body of 4285 bytes in place of 4284"},
      {Record().text("kelpco-sfw", 4283), "body of 4283 bytes in place of 4284"},
      {body({.agent = std::string(40, 'a')}), "agent name is not padded with zeros"},
      {body({.nic = std::string(64, 'a')}), "vnic name is not padded with zeros"},
      {body({.add = 2}), "add 2"},
      {body({}, {{}, 2}), "policy 2"},
      {Record().bytes(body({}, two)).set(40, 1), "a parameter in slot 1 of 1"},
      {Record().bytes(body({}, two)).set(40, 3), "parameter 0 in slot 2"},
      {Record().bytes(body({}, two)).set(48, 1), "parameter 1 in slot 0"},
      {body({}, {{"one", ""}}), "parameter 1 without a text"},
      {body({}, {{std::string(256, 'a')}}), "parameter name is not padded with zeros"},
      {Record().bytes(body()).set(4207, 1), "a parameter in slot 15 of 0"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(ask(row.record), EINVAL) << row.note;
    EXPECT_EQ(note(), row.note);
  }
  EXPECT_EQ(Host::load(store).filterCount(), 8u);
}

TEST_F(LabFilterCreation, TheLogOfTooManyParametersEndsWithTheBody) {
  EXPECT_EQ(ask(Record().bytes(body()).set(43, 0xff)), EINVAL);
  const std::string lines = decodeRecords(journal().back());
  EXPECT_NE(lines.find("    ? and 4278190064 more\n"), std::string::npos) << lines;
}

TEST_F(LabFilterCreation, RevalidationDisconnectsWhatTheTablesDoNotHave) {
  ASSERT_EQ(ask(body()), 0);
  ByteVector record = Record().u32(world).u64(0x2a631ac23a1f2e50).u64(0x26b699565000e14a);
  ASSERT_EQ(
      model.request(Device::filterTables, 10, reinterpret_cast<std::uintptr_t>(record.data())), 0);
  EXPECT_EQ(note(), std::string("disconnected ") + added);
}

}  // namespace
}  // namespace TarnLab
