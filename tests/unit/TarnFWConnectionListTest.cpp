#include <gtest/gtest.h>

#include "Expect.h"
#include "TarnFWConnectionList.h"

using namespace TarnFirewall;

namespace {

FWConnection_ connection(std::uint8_t source, std::uint16_t sourcePort = 1024) {
  FWConnection_ result{};
  result.sourceAddress[0] = 10;
  result.sourceAddress[3] = source;
  result.destinationAddress[0] = 192;
  result.destinationAddress[3] = 9;
  result.sourcePort = sourcePort;
  result.destinationPort = 65535;
  result.protocol = 6;
  return result;
}

}  // namespace

TEST(TarnFWConnectionList, AConnectionThatIsThereAlreadyChangesNothing) {
  CTarnFWConnectionList list;
  EXPECT_TRUE(list.addConnection(connection(1)));
  EXPECT_TRUE(list.addConnection(connection(1)));
  EXPECT_EQ(list.size(), 1u);
  EXPECT_EQ(list.getMsgSize(), 40u);
  EXPECT_EQ(list.getType(), 129);
  FWConnection_ other = connection(1);
  other.protocol = 17;  // the last byte
  EXPECT_TRUE(list.addConnection(other));
  EXPECT_EQ(list.size(), 2u);
}

TEST(TarnFWConnectionList, WritesItsConnectionsInTheOrderOfTheirBytes) {
  CTarnFWConnectionList list;
  list.addConnection(connection(0xff));
  list.addConnection(connection(2, 0x0203));
  list.addConnection(connection(2, 0x0102));
  Bytes bytes(121, 0xcd);
  unsigned int written = 0;
  EXPECT_TRUE(list.toMessage(bytes.data(), 120, &written));
  EXPECT_EQ(written, 120u);
  Bytes golden(121, 0);
  golden.at(120, {0xcd});
  const auto put = [&](std::size_t at, int source, int high, int low) {
    golden.at(at, {10, 0, 0, source}).at(at + 16, {192, 0, 0, 9});
    golden.at(at + 32, {high, low, 255, 255}).at(at + 39, {6});
  };
  put(0, 2, 1, 2);
  put(40, 2, 2, 3);
  put(80, 0xff, 4, 0);
  EXPECT_EQ(bytes, golden);
}

TEST(TarnFWConnectionList, ItsTextHasAddressesAndPortsOfIPv4) {
  CTarnFWConnectionList list;
  EXPECT_EQ(list.toString(), "{}");
  list.addConnection(connection(1));
  EXPECT_EQ(list.toString(), "{ from 10.0.0.1:1024 to 192.0.0.9:65535}");
  FWConnection_ ipv6{};
  ipv6.sourceAddress[0] = 0x20;
  ipv6.flags = kConnectionIPv6;
  list.addConnection(ipv6);
  EXPECT_EQ(list.toString(),
            "{ from 10.0.0.1:1024 to 192.0.0.9:65535, from 32.0.0.0:0 to 0.0.0.0:0}");
}

TEST(TarnFWConnectionList, RefusesARoomThatIsTooSmallAndWritesNothing) {
  CTarnFWConnectionList list;
  list.addConnection(connection(1));
  for (unsigned int room = 0; room < 40; ++room) {
    Bytes bytes(40, 0xcd);
    unsigned int written = 99;
    EXPECT_FALSE(list.toMessage(bytes.data(), room, &written)) << room;
    EXPECT_EQ(written, 99u);
    EXPECT_EQ(bytes, Bytes(40, 0xcd));
  }
}

TEST(TarnFWConnectionList, ACountWhoseProductNeedsMoreThan32BitsOverflows) {
  EXPECT_EQ(CTarnFWConnectionList::sizeOf(107374182), 4294967280u);
  EXPECT_THROW_WITH((void)CTarnFWConnectionList::sizeOf(107374183), CIntegerOverflowException, 17,
                    "connection count overflows: 107374183");
  EXPECT_THROW_WITH((void)CTarnFWConnectionList::sizeOf(0x100000000), CIntegerOverflowException, 17,
                    "connection count overflows: 0");
}

TEST(TarnFWConnectionList, ListsCompareBySizeAndEqualSizesHaveNoOrder) {
  CTarnFWConnectionList small;
  CTarnFWConnectionList large;
  large.addConnection(connection(1));
  EXPECT_TRUE(small < large);
  EXPECT_FALSE(large < small);
  small.addConnection(connection(2));
  EXPECT_THROW_WITH((void)(small < large), CUnsupportedException, 7, "compare two connection list");
}
