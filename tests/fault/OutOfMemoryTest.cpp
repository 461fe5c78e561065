#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <regex>

#include "DeviceShim.h"
#include "Expect.h"
#include "FullRule.h"
#include "MemoryShim.h"
#include "TarnFWAddressAttr.h"
#include "TarnFWAddressIPv4.h"
#include "TarnFWAddressList.h"
#include "TarnFWAttrProfile.h"
#include "TarnFWContainer.h"
#include "TarnFWLibHandle.h"
#include "TarnFWLog.h"
#include "TarnFWProtocol.h"
#include "TarnFWRuleAction.h"
#include "TarnFWRuleActionSNAT.h"
#include "TarnFWRuleFactory.h"
#include "tarnfw.h"

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

/// The lines that were logged last, kept without memory.
char g_logged[1024];

__attribute__((format(printf, 2, 0))) void keepLine(int, const char* format, va_list arguments) {
  const std::size_t used = std::strlen(g_logged);
  std::vsnprintf(g_logged + used, sizeof g_logged - used, format, arguments);
}

/// Registers the logger above, and sets back what a test did to the log.
struct LinesWithoutMemory {
  LinesWithoutMemory() {
    g_logged[0] = '\0';
    FW_RegisterLogger(keepLine, 6);
  }
  ~LinesWithoutMemory() {
    FW_UnregisterLogger();
    g_tarnfw_verbose[FW_COMPONENT_API].level = 0;
  }
};

/// What was logged, with the line numbers as N.
std::string loggedLines() {
  return std::regex_replace(std::string(g_logged), std::regex("\\(\\):[0-9]+ "), "():N ");
}

}  // namespace

TEST(OutOfMemory, AFlatFunctionLogsAndEndsWithAStatusWhenNoMemoryIsLeft) {
  const FWRuleSetID_t id{"web"};
  const FWRule_ rule = fullRecord();
  const auto library = CTarnFWLibHandle::GetInstance();
  const LinesWithoutMemory lines;
  g_tarnfw_verbose[FW_COMPONENT_API].level = 1;
  FWStatus_t status = 0;
  {
    const MemoryShim::NoMemory none;
    status = FW_CreateRuleSet(toLibHandle(library.get()), nullptr, nullptr, &id, nullptr, &rule, 1);
  }
  EXPECT_EQ(status, 5u);
  EXPECT_EQ(loggedLines(),
            "tarnfw:api TarnFWLibMain:FW_CreateRuleSet():N FW_CreateRuleSet.\n"
            "tarnfw: TarnFWLibMain:FW_CreateRuleSet():N FW_CreateRuleSet: encountered internal "
            "error\n"
            "tarnfw:api TarnFWLibMain:FW_CreateRuleSet():N FW_CreateRuleSet: unknown error\n");
}

TEST(OutOfMemory, ALineOfACallerComesOutWithoutMemory) {
  const LinesWithoutMemory lines;
  FWStatus_t status = 99;
  {
    const MemoryShim::NoMemory none;
    status = FW_Log(6, 0, "the disk %s is full", "/dev/sda");
  }
  EXPECT_EQ(status, 0u);
  EXPECT_STREQ(g_logged, "[INFO(misc)] the disk /dev/sda is full\n");
}

TEST(OutOfMemory, AVeryLongFormatOfACallerIsRefusedWithoutMemory) {
  FWStatus_t (*const unchecked)(int, unsigned int, const char*, ...) = FW_Log;
  const std::string format(100000, 'x');
  const LinesWithoutMemory lines;
  FWStatus_t status = 99;
  {
    const MemoryShim::NoMemory none;
    status = unchecked(6, 0, format.c_str());
  }
  EXPECT_EQ(status, 8u);
  EXPECT_STREQ(g_logged, "");
}

TEST(OutOfMemory, ALockThatFailsPassesNoExceptionEvenWithoutMemory) {
  const LinesWithoutMemory lines;
  unsigned int component = 77;
  FWStatus_t status = 99;
  {
    const MemoryShim::NoMemory none;
    DeviceShim::failNextLock();
    status = FW_RegisterComponent("mine", &component);
    DeviceShim::failNextLock();
    FW_SetLibPrettyPrinting(nullptr, nullptr);
  }
  EXPECT_EQ(status, 5u);
  EXPECT_EQ(component, 77u);
  EXPECT_EQ(
      loggedLines(),
      "tarnfw: TarnFWLibMain:FW_RegisterComponent():N FW_RegisterComponent: encountered internal "
      "error\n"
      "tarnfw: TarnFWLibMain:FW_SetLibPrettyPrinting():N FW_SetLibPrettyPrinting: encountered "
      "internal error\n");
}

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

TEST(OutOfMemory, AListHandsItsMembersOverWithoutMemory) {
  CTarnFWAddressList list(false);
  list.addAddress(std::make_unique<CTarnFWAddressIPv4>("10.0.0.1", false));
  list.addAddress(std::make_unique<CTarnFWAddressIPv4>("10.0.0.2", false));
  expectUnharmed([&] { return list.toString(); });
  std::vector<std::unique_ptr<CTarnFWAddress>> taken;
  EXPECT_EQ(MemoryShim::failEachAllocation(
                [&] { taken = list.takeAddresses(); },
                [&] { EXPECT_EQ(list.toString(), "{ip 10.0.0.1, ip 10.0.0.2}"); }),
            0u);
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
  const CTarnFWProtocol protocol(FWProtocolLayer::ethernet, 0x86dd, true);
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
