#include <gtest/gtest.h>

#include "Expect.h"
#include "FullRule.h"
#include "MemoryShim.h"
#include "TarnFWAddressAttr.h"
#include "TarnFWAddressIPv4.h"
#include "TarnFWAddressList.h"
#include "TarnFWAttrProfile.h"
#include "TarnFWContainer.h"
#include "TarnFWProtocol.h"
#include "TarnFWRuleAction.h"
#include "TarnFWRuleActionSNAT.h"
#include "TarnFWRuleFactory.h"

using namespace TarnFirewall;

namespace {

/// Expects the text to come out the same after any allocation for it has failed.
template <typename Text>
void expectUnharmed(Text text) {
  const std::string before = text();
  const unsigned int failures = MemoryShim::failEachAllocation([&] { static_cast<void>(text()); },
                                                               [&] { EXPECT_EQ(text(), before); });
  EXPECT_GT(failures, 0u) << before;
}

std::unique_ptr<CTarnFWContainerElement> app(long value) {
  return std::make_unique<CTarnFWL7Attribute>(FW_ATTR_KEY_APP_ID, value);
}

/// Record of a rule with all its parts and texts that no string holds in itself.
FWRule_ fullRecord() {
  const Bytes bytes = fullRuleRecord()
                          .text(380, std::string(37, 'e'))
                          .text(422, std::string(37, 'p'))
                          .text(852, std::string(31, 't'));
  return loadRecord<FWRule_>(bytes.data());
}

}  // namespace

TEST(OutOfMemory, TheTextsOfAnAttributeAddressLeaveItAsItWas) {
  const CTarnFWAttr<FW_ATTR_ID_VALUE_INT> number(FWAttrIDType{}, "33", true);
  expectUnharmed([&] { return number.toString(); });
  const CTarnFWAttr<FW_ATTR_ID_VALUE_UINT> unsignedNumber(FWAttrIDType{}, "33", true);
  expectUnharmed([&] { return unsignedNumber.toString(); });
  const Bytes bytes = Bytes(144).at(0, {14}).text(14, std::string(100, 'a'));
  const auto record = loadRecord<FWAddress_>(bytes.data());
  const CTarnFWAttr<FW_ATTR_ID_VALUE_STRING> text(&record);
  expectUnharmed([&] { return text.toString(); });
}

TEST(OutOfMemory, AListThatCannotHandItsMembersOverKeepsThem) {
  CTarnFWAddressList list(false);
  list.addAddress(std::make_unique<CTarnFWAddressIPv4>("10.0.0.1", false));
  list.addAddress(std::make_unique<CTarnFWAddressIPv4>("10.0.0.2", false));
  expectUnharmed([&] { return list.toString(); });
  std::vector<std::unique_ptr<CTarnFWAddress>> taken;
  EXPECT_EQ(MemoryShim::failEachAllocation(
                [&] { taken = list.takeAddresses(); },
                [&] { EXPECT_EQ(list.toString(), "{ip 10.0.0.1, ip 10.0.0.2}"); }),
            1u);
  EXPECT_EQ(list.toString(), "{}");
  ASSERT_EQ(taken.size(), 2u);
  EXPECT_EQ(taken[1]->toString(), "ip 10.0.0.2");
}

TEST(OutOfMemory, TheTextsOfContainersLeaveThemAsTheyWere) {
  CTarnFWContainer container("web", static_cast<FWContainerType>(7));
  container.addElement(app(33));
  expectUnharmed([&] { return container.toString(); });
  CTarnFWAttrProfile profile("web");
  profile.addElement(app(33));
  profile.addElement(app(34));
  expectUnharmed([&] { return profile.toString(); });
}

TEST(OutOfMemory, AChainIsReadWholeOrTheReadingThrows) {
  CTarnFWAttrProfile profile("web");
  profile.addElement(app(33));
  profile.addElement(
      std::make_unique<CTarnFWL7Attribute>(FW_ATTR_KEY_HTTP_PATH, 1UL, 2UL, "/a/long/path"));
  Bytes bytes(profile.getMsgSize());
  ASSERT_TRUE(profile.toMessage(bytes.data(), profile.getMsgSize(), nullptr));
  expectUnharmed([&] {
    return CTarnFWContainer::BuildContainer("web", FW_CONTAINER_ATTR_PROFILE,
                                            reinterpret_cast<const FWtlvChain*>(bytes.data()),
                                            static_cast<unsigned int>(bytes.size()))
        ->toString();
  });
}

TEST(OutOfMemory, TheTextsOfAProtocolLeaveItAsItWas) {
  const CTarnFWProtocol protocol(false, 0x86dd, true);
  expectUnharmed([&] { return protocol.toString(); });
  expectUnharmed([&] { return protocol.toString2(); });
}

TEST(OutOfMemory, TheTextsOfAnActionLeaveItAsItWas) {
  CTarnFWRuleActionSNAT action(std::make_unique<CTarnFWAddressIPv4>("10.0.0.1", false));
  action.enableLogPacket();
  action.enableNoFlow();
  action.enableRtt();
  expectUnharmed([&] { return action.toString(); });
  expectUnharmed([&] { return action.toString(0); });
  expectUnharmed([&] { return action.flagToString(); });
}

TEST(OutOfMemory, TheTextsOfARuleLeaveItAsItWas) {
  const FWRule_ record = fullRecord();
  const auto rule = CTarnFWRuleFactory::newFromMsgBuf(&record);
  ASSERT_NE(rule, nullptr);
  expectUnharmed([&] { return rule->toString(); });
  expectUnharmed([&] { return rule->toString2(); });
}

TEST(OutOfMemory, ARuleIsReadWholeOrTheReadingThrows) {
  const FWRule_ record = fullRecord();
  expectUnharmed([&] { return CTarnFWRuleFactory::newFromMsgBuf(&record)->toString(); });
}
