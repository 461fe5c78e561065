#include <cerrno>

#include "LabBench.h"
#include "LabDecode.h"
#include "LabFamily.h"

namespace TarnLab {
namespace {

class LabPloy : public LabBench {
 protected:
  /// The usual host, beside the one without anything that a bench begins with.
  void fillUsual() {
    const StoreLock lock(store);
    fillHost(store, Host::sample());
  }

  /// A request of the insertion device. Returns its result, or an errno with a minus.
  int insertion(std::uint32_t number, ConstBytes input, ByteVector& into) {
    const ByteVector frame = Record()
                                 .u32(number)
                                 .u32(0)
                                 .u32(input.size())
                                 .u32(into.size())
                                 .u64(reinterpret_cast<std::uintptr_t>(input.data()))
                                 .u64(reinterpret_cast<std::uintptr_t>(into.data()));
    int result = 0;
    const int error =
        model.request(Device::serviceInsertion, number,
                      reinterpret_cast<std::uintptr_t>(frame.data()), nullptr, &result);
    return error != 0 ? -error : result;
  }

  std::uint64_t count(std::uint32_t number) {
    ByteVector counted(8);
    EXPECT_EQ(insertion(number, {}, counted), 0) << note();
    return get64(counted, 0);
  }

  /// So many entries of a size, with the head in front.
  int read(std::uint32_t number, std::uint64_t wanted, std::size_t room) {
    const ByteVector input = Record().u64(wanted);
    output.assign(room, std::byte{0xee});
    return insertion(number, input, output);
  }

  int statistics(std::uint32_t port, std::size_t room = 160) {
    const ByteVector input = Record().u32(port);
    output.assign(room, std::byte{0xee});
    return insertion(11, input, output);
  }

  ByteVector output;
};

TEST_F(LabPloy, AHostThatIsNotTheUsualOneHasNothing) {
  for (const std::uint32_t number : {12u, 14u, 16u}) EXPECT_EQ(count(number), 0u);
  ASSERT_EQ(read(13, 2, 16 + 2 * 84), 0);
  EXPECT_TRUE(isZero(output));
  EXPECT_EQ(statistics(67108875), 0xbad0003);
}

TEST_F(LabPloy, ServicesHaveEveryPolicyAndAStrangeOne) {
  fillUsual();
  ASSERT_EQ(count(12), 5u);
  ASSERT_EQ(read(13, 5, 16 + 5 * 84), 0) << note();
  EXPECT_EQ(get64(output, 0), 5u);
  std::vector<unsigned> policies;
  for (std::size_t i = 0; i < 5; ++i) policies.push_back(get8(output, 16 + 84 * i + 79));
  EXPECT_EQ(policies, (std::vector<unsigned>{0, 1, 2, 3, 9}));
  const ConstBytes second = part(ConstBytes(output), 16 + 84, 84);
  EXPECT_EQ(getText(second, 0, 37), "7d1f02c4-93ab-4e50-8a6e-005056994c02");
  // 24 bits in network order, and a byte that says nothing.
  EXPECT_EQ(ByteVector(second.begin() + 37, second.begin() + 41),
            (const ByteVector&)Record().u8(0).u8(0).u8(102).u8(0xaa));
  EXPECT_EQ(get32(second, 41), 253u);
  EXPECT_EQ(get32(second, 45), 12u);
  EXPECT_EQ(ByteVector(second.begin() + 64, second.begin() + 68),
            (const ByteVector&)Record().u8(2).u8(0).u8(200).u8(0xaa));
  EXPECT_EQ(get32(second, 68), 126u);
  EXPECT_EQ(get32(second, 72), 1002u);
}

TEST_F(LabPloy, EntriesOfNshHaveEveryTypeWithEveryMode) {
  fillUsual();
  ASSERT_EQ(count(14), 5u);
  ASSERT_EQ(read(15, 5, 16 + 5 * 17), 0);
  std::vector<std::pair<unsigned, unsigned>> forms;
  for (std::size_t i = 0; i < 5; ++i) {
    forms.emplace_back(get8(output, 16 + 17 * i + 15), get8(output, 16 + 17 * i + 16));
  }
  EXPECT_EQ(forms,
            (std::vector<std::pair<unsigned, unsigned>>{{0, 0}, {1, 0}, {0, 1}, {1, 1}, {7, 9}}));
}

TEST_F(LabPloy, ProxiesHaveBothWordsOfEveryColumn) {
  fillUsual();
  ASSERT_EQ(count(16), 4u);
  ASSERT_EQ(read(17, 4, 16 + 4 * 10), 0);
  for (std::size_t column = 6; column < 10; ++column) {
    std::size_t set = 0;
    for (std::size_t i = 0; i < 4; ++i) set += get8(output, 16 + 10 * i + column) != 0 ? 1 : 0;
    EXPECT_GT(set, 0u) << column;
    EXPECT_LT(set, 4u) << column;
  }
}

TEST_F(LabPloy, NoMoreEntriesAreWrittenThanAreWanted) {
  fillUsual();
  ASSERT_EQ(read(13, 2, 16 + 3 * 84), 0);
  EXPECT_EQ(get64(output, 0), 2u);
  EXPECT_TRUE(isZero(part(ConstBytes(output), 16 + 2 * 84, 84)));
  ASSERT_EQ(read(13, 9, 16 + 9 * 84), 0);
  EXPECT_EQ(get64(output, 0), 5u);
  for (const std::uint64_t wanted : {std::uint64_t{3}, UINT64_MAX, UINT64_MAX / 84 + 2}) {
    EXPECT_EQ(read(13, wanted, 16 + 3 * 84 - 1), -EINVAL) << wanted;
  }
  EXPECT_EQ(read(13, 0, 15), -EINVAL);
  EXPECT_EQ(output, ByteVector(15, std::byte{0xee}));
}

TEST_F(LabPloy, StatisticsAreMultiplesOfOneNumber) {
  fillUsual();
  ASSERT_EQ(statistics(67108875), 0);
  for (std::size_t i = 0; i < 20; ++i) EXPECT_EQ(get64(output, 8 * i), 1009 * (i + 1));
  ASSERT_EQ(statistics(67108876), 0);
  EXPECT_TRUE(isZero(output));
  EXPECT_EQ(statistics(67108875, 159), -EINVAL);
  EXPECT_EQ(statistics(67108877), 0xbad0003);
  EXPECT_EQ(decodeRequest(journal().back()),
            "insertion 11: statistics of a service machine(port 67108877) = result 195887107 "
            "(port 67108877 is none of a service machine)");
}

TEST_F(LabPloy, TheLogHasTheEntries) {
  fillUsual();
  count(14);
  EXPECT_EQ(decodeRequest(journal().back()), "insertion 14: number of NSH entries = ok {count 5}");
  read(15, 1, 16 + 17);
  EXPECT_EQ(decodeRequest(journal().back()), "insertion 15: NSH entries(wanted 1) = ok {count 1}");
  EXPECT_EQ(decodeRecords(journal().back()),
            "    spi 101, si 254, mac 00:50:56:99:4c:01, type 0, mode 0\n");
  read(13, 1, 16 + 84);
  EXPECT_EQ(decodeRecords(journal().back()),
            "    7d1f02c4-93ab-4e50-8a6e-005056994c01 forward spi 101, si 254, scid 11, "
            "mac 00:50:56:99:4c:01, reverse spi 65736, si 127, scid 1001, "
            "mac 00:50:56:99:4c:81, policy 0\n");
  read(17, 1, 16 + 10);
  EXPECT_EQ(decodeRecords(journal().back()),
            "    mac 00:50:56:99:4c:01, native 1, decrypts 0, liveness 0, redirects 0\n");
}

}  // namespace
}  // namespace TarnLab
