// The commands about what a filter learns of names and of layer 7: their texts, what they refuse,
// and what they print for every reply.

#include <gtest/gtest.h>

#include "CommandTest.h"
#include "TarnFWAddrSetID.h"
#include "TarnFWCmdConfigL7CopyMode.h"
#include "TarnFWCmdGetDnsConfigProfile.h"
#include "TarnFWCmdSetDnsConfigProfile.h"

using namespace TarnFirewall;

using TarnFWCmdProfile = CommandTest<FWAddrSetID_t>;

TEST_F(TarnFWCmdProfile, CommandsHaveTheirTexts) {
  const dvs_port_ port = filterPort("nic-1");
  expectIdentity(CTarnFWCmdSetDnsConfigProfile(&port), 83, 13,
                 "set dns config profile of filter nic-1");
  expectIdentity(CTarnFWCmdGetDnsConfigProfile(&port), 84, 13,
                 "describe dns config profile of filter nic-1");
  expectIdentity(CTarnFWCmdConfigL7CopyMode(&port, true), 85, 4,
                 "enable l7 copy mode of filter nic-1");
  expectIdentity(CTarnFWCmdConfigL7CopyMode(&port, false), 85, 4,
                 "disable l7 copy mode of filter nic-1");
}

TEST_F(TarnFWCmdProfile, WithoutArgumentsTheTimeToLiveIsAutomatic) {
  CTarnFWCmdSetDnsConfigProfile command(nullptr);
  EXPECT_EQ(requestOf(command), Bytes(13).at(4, {2}));
}

TEST_F(TarnFWCmdProfile, EveryAddressFollowsTheHead) {
  for (const unsigned int count : {0u, 1u, 2u, 100u}) {
    std::vector<FWAddress_> addresses(count);
    for (FWAddress_& address : addresses) address.type = 6;
    CTarnFWCmdSetDnsConfigProfile command(nullptr, 1, 0, addresses);
    Bytes body = Bytes(13 + 144 * std::size_t{count}).at(4, {1});
    put32(body, 9, count);
    for (unsigned int i = 0; i < count; ++i) body.at(13 + 144 * std::size_t{i}, {6});
    EXPECT_EQ(requestOf(command), body) << count;
  }
}

TEST_F(TarnFWCmdProfile, AKindOfMoreThanAByteIsRefused) {
  EXPECT_NO_THROW(CTarnFWCmdSetDnsConfigProfile(nullptr, 255, 1));
  for (const unsigned int kind : {256u, 257u, 258u, ~0u}) {
    EXPECT_THROW(CTarnFWCmdSetDnsConfigProfile(nullptr, kind, 1), CUnsupportedException) << kind;
  }
}

TEST_F(TarnFWCmdProfile, EveryTimeToLiveOfTheKernelIsPrinted) {
  CTarnFWCmdGetDnsConfigProfile command(nullptr);
  const auto reply = [](int kind, std::uint32_t seconds) {
    Bytes bytes = Bytes(13).at(4, {kind}).at(9, {0xff, 0xff, 0xff, 0xff});
    return put32(bytes, 5, seconds);
  };
  EXPECT_EQ(printedFor(command, reply(1, 7)), "Time To Live Value : Infinite\n");
  EXPECT_EQ(printedFor(command, reply(2, 7)), "Time To Live Value : auto\n");
  EXPECT_EQ(printedFor(command, reply(0, 0)), "Time To Live Value : 0 secs\n");
  EXPECT_EQ(printedFor(command, reply(0, 864000)), "Time To Live Value : 864000 secs\n");
  EXPECT_EQ(printedFor(command, reply(3, 7)), "Time To Live Value : 7 secs\n");
  EXPECT_EQ(printedFor(command, reply(255, ~0u)), "Time To Live Value : 4294967295 secs\n");
}
