#include <gtest/gtest.h>

#include <cerrno>

#include "LabBench.h"

namespace TarnLab {
namespace {

class LabFilterList : public LabBench {
 protected:
  static ByteVector listBody(const std::string& agent, std::uint32_t count = 0,
                             const ByteVector* buffer = nullptr) {
    return Record()
        .text(agent, 100)
        .u32(count)
        .u32(buffer == nullptr ? 0 : buffer->size())
        .u64(buffer == nullptr ? 0 : reinterpret_cast<std::uintptr_t>(buffer->data()));
  }
};

TEST_F(LabFilterList, CountsEveryFilterOrThoseOfAnAgent) {
  ByteVector body = listBody("");
  ASSERT_EQ(direct(20, body), 0);
  EXPECT_EQ(get32(body, 100), 8u);
  body = listBody("kelpco-inspect");
  ASSERT_EQ(direct(20, body), 0);
  EXPECT_EQ(get32(body, 100), 1u);
  body = listBody("nobody");
  ASSERT_EQ(direct(20, body), 0);
  EXPECT_EQ(get32(body, 100), 0u);
}

TEST_F(LabFilterList, FillsRecordsOfTheCurrentSize) {
  ByteVector records(8 * 866);
  ByteVector body = listBody("", 8, &records);
  ASSERT_EQ(direct(21, body), 0);
  EXPECT_EQ(get32(body, 100), 8u);
  EXPECT_EQ(get32(body, 104), 8u * 866u);
  EXPECT_EQ(getText(records, 0, 204), web);
  EXPECT_EQ(getText(records, 204, 100), "kelpco-sfw");
  EXPECT_EQ(getText(records, 304, 128), "50 2e 1f 3a c2 1a 63 2a-4a e1 00 50 56 99 b6 26");
  EXPECT_EQ(get32(records, 762), 1u);
  EXPECT_EQ(get32(records, 766), 0u);
  EXPECT_EQ(getText(records, 4 * 866, 204), "nic-1003044-eth1-kelpco-sfw.2");
  EXPECT_EQ(get32(records, 4 * 866 + 436), 0x43u);
  EXPECT_EQ(getText(records, 6 * 866 + 770, 48), "");
}

TEST_F(LabFilterList, SaysWhetherRulesAreConfigured) {
  ASSERT_EQ(createRuleSet("web", {}), 0u);
  ByteVector records(8 * 866);
  ByteVector body = listBody("", 8, &records);
  ASSERT_EQ(direct(21, body), 0);
  EXPECT_EQ(get32(records, 766), 1u);
  EXPECT_EQ(get32(records, 866 + 766), 0u);
}

TEST_F(LabFilterList, FillsRecordsOfTheOlderSize) {
  ByteVector records(2 * 734 + 1, std::byte{0xee});
  ByteVector body =
      Record().zero(100).u32(2).u32(2 * 734).u64(reinterpret_cast<std::uintptr_t>(records.data()));
  ASSERT_EQ(direct(21, body), 0);
  EXPECT_EQ(get32(body, 100), 2u);
  EXPECT_EQ(getText(records, 734, 204), "nic-1002672-eth0-kelpco-inspect.4");
  EXPECT_TRUE(isZero(part(ConstBytes(records), 734 + 728, 6)));
  EXPECT_EQ(records.back(), std::byte{0xee});
}

TEST_F(LabFilterList, CutsTheListToTheRoomThatThereIs) {
  ByteVector records(3 * 866);
  ByteVector body = listBody("kelpco-sfw", 3, &records);
  ASSERT_EQ(direct(21, body), 0);
  EXPECT_EQ(get32(body, 100), 3u);
  EXPECT_EQ(get32(body, 104), 3u * 866u);
}

TEST_F(LabFilterList, RefusesRoomOfNoRecordSize) {
  ByteVector records(8 * 866);
  for (const std::uint32_t count : {0u, 1u, 7u, 9u}) {
    ByteVector body = listBody("", count, &records);
    EXPECT_EQ(direct(21, body), EINVAL) << count;
  }
}

TEST_F(LabFilterList, FillsTheRecordOfOneFilter) {
  const std::string name = "nic-1003044-eth1-kelpco-sfw.2";
  ByteVector record = Record().text(name, 204).to(866);
  ByteVector body = listBody("kelpco-sfw", 1, &record);
  ASSERT_EQ(direct(40, body), 0) << note();
  EXPECT_EQ(note(), "filter " + name);
  EXPECT_EQ(get32(body, 100), 1u);
  EXPECT_EQ(get32(body, 104), 866u);
  ByteVector all(8 * 866);
  ByteVector list = listBody("", 8, &all);
  ASSERT_EQ(direct(21, list), 0);
  EXPECT_EQ(record, ByteVector(all.begin() + 4 * 866, all.begin() + 5 * 866));
  EXPECT_EQ(get32(record, 432), 1u);
}

TEST_F(LabFilterList, AnswersForAFilterThatIsNotThereWithAStatus) {
  for (const auto& [agent, name] : {std::pair{"kelpco-inspect", web}, {"kelpco-sfw", "nowhere"}}) {
    ByteVector record = Record().text(name, 866);
    ByteVector body = listBody(agent, 1, &record);
    const ByteVector frame =
        Record().u32(40).u32(0).u32(116).u64(reinterpret_cast<std::uintptr_t>(body.data()));
    ASSERT_EQ(model.request(Device::firewall, 40, reinterpret_cast<std::uintptr_t>(frame.data())),
              0);
    EXPECT_EQ(get32(frame, 4), 21u);
    EXPECT_EQ(record, (const ByteVector&)Record().text(name, 866)) << "nothing was written";
  }
}

TEST_F(LabFilterList, RefusesARequestForOneFilterWithAnotherForm) {
  ByteVector record = Record().text(web, 866);
  ByteVector body = listBody("kelpco-sfw", 2, &record);
  EXPECT_EQ(direct(40, body), EINVAL);
  record.pop_back();
  body = listBody("kelpco-sfw", 1, &record);
  EXPECT_EQ(direct(40, body), EINVAL);
  record = Record().text(std::string(204, 'a'), 866);
  body = listBody("kelpco-sfw", 1, &record);
  EXPECT_EQ(direct(40, body), EINVAL);
  body = Record().text("kelpco-sfw", 100).u32(1).u32(866).u64(16);
  EXPECT_EQ(direct(40, body), EFAULT);
}

TEST_F(LabFilterList, RefusesAnotherBodyLengthAndBadAddresses) {
  for (const std::size_t size : {0u, 115u, 117u}) {
    ByteVector body(size);
    EXPECT_EQ(direct(20, body), EINVAL) << size;
  }
  ByteVector body = Record().zero(100).u32(1).u32(866).u64(16);
  EXPECT_EQ(direct(21, body), EFAULT);
  const ByteVector frame = Record().u32(20).u32(0).u32(116).u64(1);
  EXPECT_EQ(model.request(Device::firewall, 20, reinterpret_cast<std::uintptr_t>(frame.data())),
            EFAULT);
  EXPECT_EQ(model.request(Device::firewall, 20, 0), EFAULT);
}

TEST_F(LabFilterList, RefusesAFrameForAnotherRequest) {
  const ByteVector body(116);
  const auto address = reinterpret_cast<std::uintptr_t>(body.data());
  ByteVector frame = Record().u32(21).u32(0).u32(116).u64(address);
  EXPECT_EQ(model.request(Device::firewall, 20, reinterpret_cast<std::uintptr_t>(frame.data())),
            EINVAL);
  EXPECT_EQ(note(), "frame has command 21");
  frame = Record().u32(20).u32(1).u32(116).u64(address);
  EXPECT_EQ(model.request(Device::firewall, 20, reinterpret_cast<std::uintptr_t>(frame.data())),
            EINVAL);
  EXPECT_EQ(note(), "frame has status 1");
}

TEST_F(LabFilterList, AnswersUnknownDirectRequestsNotAtAll) {
  const ByteVector body(8);
  ByteVector frame =
      Record().u32(99).u32(0).u32(8).u64(reinterpret_cast<std::uintptr_t>(body.data()));
  EXPECT_EQ(model.request(Device::firewall, 99, reinterpret_cast<std::uintptr_t>(frame.data())),
            ENOTTY);
  EXPECT_EQ(model.request(Device::filterTables, 99, 0), ENOTTY);
}

TEST(LabHostSizes, TheHostsMachinesCanBeMany) {
  const Host host = Host::generated(1000);
  EXPECT_EQ(host.filterCount(), 1000u);
  EXPECT_EQ(host.name(999), "nic-1000999-eth0-kelpco-sfw.2");
}

TEST_F(LabFilterList, ShowsTheFlowFlagsThatWereSet) {
  ByteVector record = Record().text(other, 204).to(436).u32(0x41).to(866);
  ByteVector body = listBody("kelpco-sfw", 0, &record);
  ASSERT_EQ(direct(27, body), 0);
  EXPECT_EQ(note(), "filter nic-1002731-eth0-kelpco-sfw.2, flags 0x41");
  ByteVector records(8 * 866);
  body = listBody("", 8, &records);
  ASSERT_EQ(direct(21, body), 0);
  EXPECT_EQ(get32(records, 436), 0u);
  EXPECT_EQ(get32(records, 2 * 866 + 436), 0x41u);
  EXPECT_EQ(get32(records, 4 * 866 + 436), 0x43u) << "as the host was made";

  // No flag at all is a choice as well, in records of either size.
  record = Record().text("nic-1003044-eth1-kelpco-sfw.2", 204).to(866);
  body = listBody("kelpco-sfw", 0, &record);
  ASSERT_EQ(direct(27, body), 0);
  ByteVector old(8 * 734);
  body = listBody("", 8, &old);
  ASSERT_EQ(direct(21, body), 0);
  EXPECT_EQ(get32(old, 4 * 734 + 436), 0u);
}

TEST_F(LabFilterList, ClearsWhatWasCountedForOneFilter) {
  ByteVector name = Record().text(web, 100);
  ASSERT_EQ(direct(35, name), 0);
  ByteVector records(8 * 866);
  ByteVector body = listBody("", 8, &records);
  ASSERT_EQ(direct(21, body), 0);
  EXPECT_TRUE(isZero(part(ConstBytes(records), 448, 280))) << "counters and rates";
  EXPECT_NE(getText(records, 770, 48), "");
  EXPECT_FALSE(isZero(part(ConstBytes(records), 866 + 448, 256))) << "of this filter only";
  ByteVector older(8 * 734);
  body = listBody("", 8, &older);
  ASSERT_EQ(direct(21, body), 0);
  EXPECT_TRUE(isZero(part(ConstBytes(older), 448, 280)));
  // The interface belongs to the filter.
  ASSERT_EQ(command(29, Record().zero(1642)), 0u);
  for (std::size_t at = 2; at < 1642; at += 41) {
    EXPECT_EQ(get64(reply, at + 25) + get64(reply, at + 33), 0u) << at;
  }
}

TEST_F(LabFilterList, ClearsNothingOfAFilterThatIsNotThere) {
  ByteVector name = Record().text("nic-9", 100);
  EXPECT_EQ(direct(35, name), ENOENT);
  EXPECT_EQ(note(), "there is no filter nic-9");
  name = Record().text("", 100);
  EXPECT_EQ(direct(35, name), ENOENT);
  name = Record().text(web, 100).set(99, 'x');
  EXPECT_EQ(direct(35, name), EINVAL);
  name = Record().text(web, 99);
  EXPECT_EQ(direct(35, name), EINVAL);
}

TEST_F(LabFilterList, RefusesFlowFlagsOfNoFilter) {
  ByteVector record = Record().text(other, 204).to(866);
  ByteVector body = listBody("kelpco-inspect", 0, &record);
  EXPECT_EQ(direct(27, body), ENOENT);
  record = Record().text("nobody", 204).to(866);
  body = listBody("kelpco-sfw", 0, &record);
  EXPECT_EQ(direct(27, body), ENOENT);
  record = Record().text(other, 204).to(436).u32(0x80).to(866);
  body = listBody("kelpco-sfw", 0, &record);
  EXPECT_EQ(direct(27, body), EINVAL);
  record.resize(865);
  body = listBody("kelpco-sfw", 0, &record);
  EXPECT_EQ(direct(27, body), EINVAL);
  body = Record().text("kelpco-sfw", 100).u32(0).u32(866).u64(8);
  EXPECT_EQ(direct(27, body), EFAULT);
}

}  // namespace
}  // namespace TarnLab
