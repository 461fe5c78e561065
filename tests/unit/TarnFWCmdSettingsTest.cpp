// The commands about settings of a filter: their texts, what they refuse, and what they print for
// every reply.

#include <gtest/gtest.h>

#include "CommandTest.h"
#include "TarnFWCmdGetFailPolicy.h"
#include "TarnFWCmdSetFailPolicy.h"

using namespace TarnFirewall;

using TarnFWCmdSettings = CommandTest<FWAddrSetID_t>;

TEST_F(TarnFWCmdSettings, FailPoliciesHaveTheirTexts) {
  const dvs_port_ port = filterPort("nic-1");
  expectIdentity(CTarnFWCmdSetFailPolicy(&port, FW_FAIL_OPEN), 31, 1, " failure policy: fail open");
  expectIdentity(CTarnFWCmdSetFailPolicy(&port, FW_FAIL_CLOSE), 31, 1,
                 " failure policy: fail close");
  expectIdentity(CTarnFWCmdGetFailPolicy(&port), 35, 1, "describe failure policy of filter nic-1");
}

TEST_F(TarnFWCmdSettings, AFailPolicyAboveOneIsRefused) {
  for (const std::uint32_t policy : {2u, 256u, 257u, 0xffffffffu}) {
    EXPECT_THROW_WITH(CTarnFWCmdSetFailPolicy(nullptr, static_cast<FWFailPolicy_t>(policy)),
                      CUnsupportedException, 7, "invalid fail policy");
  }
}

TEST_F(TarnFWCmdSettings, AnyFailPolicyOfTheKernelIsPrinted) {
  CTarnFWCmdGetFailPolicy command(nullptr);
  EXPECT_EQ(printedFor(command, Bytes({0})), "filter fail policy: fail open\n");
  EXPECT_EQ(printedFor(command, Bytes({1})), "filter fail policy: fail close\n");
  EXPECT_EQ(printedFor(command, Bytes({2})), "filter fail policy: undefined\n");
  EXPECT_EQ(printedFor(command, Bytes({255})), "filter fail policy: undefined\n");
}
