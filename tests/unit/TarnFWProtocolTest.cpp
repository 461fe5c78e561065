#include <gtest/gtest.h>
#include <netdb.h>

#include <thread>

#include "Expect.h"
#include "LibcShim.h"
#include "Message.h"
#include "TarnFWProtocol.h"

using namespace TarnFirewall;

namespace {

std::string hostName(int number) {
  const protoent* entry = getprotobynumber(number);
  return entry != nullptr ? entry->p_name : std::to_string(number);
}

}  // namespace

TEST(TarnFWProtocol, AnyProtocolOfEachLayer) {
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ip).toString(), "protocol any");
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ethernet).toString(), "ethertype any");
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ip).toString2(), "Protocol : any");
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ethernet).toString2(), "Ethertype : any");
  EXPECT_FALSE(CTarnFWProtocol(FWProtocolLayer::ip).isDefined());
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ip).getNumber(), 0);
}

TEST(TarnFWProtocol, AnIPProtocolHasTheHostsNameForIt) {
  for (const int number : {0, 1, 6, 17, 47, 50, 58, 132, 255}) {
    EXPECT_EQ(
        CTarnFWProtocol(FWProtocolLayer::ip, static_cast<unsigned short>(number), false).toString(),
        "protocol " + hostName(number));
  }
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ip, 6, true).toString(),
            "not protocol " + hostName(6));
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ip, 6, true).toString2(),
            "not Protocol : " + hostName(6));
}

TEST(TarnFWProtocol, AnIPProtocolWithoutANameIsItsNumber) {
  ASSERT_EQ(getprotobynumber(253), nullptr);
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ip, 253, false).toString(), "protocol 253");
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ip, 253, false).toString(), "protocol 253");
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ip, 65535, false).toString(), "protocol 65535");
}

TEST(TarnFWProtocol, AProtocolMayHaveANameOfAnyLength) {
  const std::string name(5000, 'p');
  const LibcShim::HostProtocol known(300, name);
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ip, 300, false).toString(), "protocol " + name);
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ip, 301, false).toString(), "protocol 301");
}

TEST(TarnFWProtocol, OnlyTheNamesOf8BitNumbersAreKept) {
  for (const char* name : {"first", "second"}) {
    const LibcShim::HostProtocol known(256, name);
    EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ip, 256, false).toString(),
              std::string("protocol ") + name);
  }
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ip, 256, false).toString(), "protocol 256");
  const std::string before = CTarnFWProtocol(FWProtocolLayer::ip, 255, false).toString();
  const LibcShim::HostProtocol known(255, "changed");
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ip, 255, false).toString(), before);
}

TEST(TarnFWProtocol, NamesAreTheSameFromAnyThread) {
  std::vector<std::string> texts(4);
  std::vector<std::thread> threads;
  for (std::string& text : texts) {
    threads.emplace_back([&text] {
      for (unsigned short number = 0; number < 256; ++number)
        text += CTarnFWProtocol(FWProtocolLayer::ip, number, false).toString() + '\n';
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::string expected;
  for (int number = 0; number < 256; ++number) expected += "protocol " + hostName(number) + '\n';
  for (const std::string& text : texts) EXPECT_EQ(text, expected);
}

TEST(TarnFWProtocol, AnEthertypeHasFourHexadecimalDigits) {
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ethernet, 0x800, false).toString(),
            "ethertype 0x0800");
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ethernet, 0x86dd, true).toString(),
            "not ethertype 0x86dd");
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ethernet, 0, false).toString2(), "Ethertype : 0x0000");
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ethernet, 0xffff, true).toString2(),
            "not Ethertype : 0xffff");
}

TEST(TarnFWProtocol, FourPartConstructorRefusesNotWithoutANumber) {
  EXPECT_THROW_WITH(CTarnFWProtocol(false, 6, FWProtocolLayer::ip, true), CUnsupportedException, 7,
                    "protocol is not defined but not protocol flag is set");
  EXPECT_EQ(CTarnFWProtocol(false, 6, FWProtocolLayer::ip, false).toString(), "protocol any");
  EXPECT_EQ(CTarnFWProtocol(true, 0x806, FWProtocolLayer::ethernet, true).toString(),
            "not ethertype 0x0806");
}

TEST(TarnFWProtocol, SetProtocolDefinesIt) {
  CTarnFWProtocol protocol(FWProtocolLayer::ethernet);
  protocol.setProtocol(0x806, true);
  EXPECT_TRUE(protocol.isDefined());
  EXPECT_TRUE(protocol.isNegated());
  EXPECT_FALSE(protocol.isLayer3());
  EXPECT_EQ(protocol.getNumber(), 0x806);
  EXPECT_EQ(protocol.toString(), "not ethertype 0x0806");
}

TEST(TarnFWProtocol, IsAnIPProtocolOnlyWhenDefinedOnLayer3AndPlain) {
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ip, 6, false).getIPProtocol(), 6);
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ip, 0, false).getIPProtocol(), 0);
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ip, 6, true).getIPProtocol(), -1);
  EXPECT_EQ(CTarnFWProtocol(FWProtocolLayer::ethernet, 6, false).getIPProtocol(), -1);
  EXPECT_EQ(CTarnFWProtocol(false, 6, FWProtocolLayer::ip, false).getIPProtocol(), -1);
}

TEST(TarnFWProtocol, HasNoWireForm) {
  CTarnFWProtocol protocol(FWProtocolLayer::ip, 6, false);
  EXPECT_EQ(protocol.getType(), 19);
  EXPECT_EQ(protocol.getMsgSize(), 0u);
  EXPECT_EQ(messageOf(protocol), Bytes(0));
  EXPECT_TRUE(protocol.toMessage(nullptr, 0, nullptr));
}
