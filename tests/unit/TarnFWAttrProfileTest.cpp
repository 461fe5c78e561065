#include <gtest/gtest.h>
#include <syslog.h>

#include "Expect.h"
#include "LogCapture.h"
#include "TarnFWAttrProfile.h"

using namespace TarnFirewall;

namespace {

std::unique_ptr<CTarnFWL7Attribute> attribute(FWAttrKeyID key, long value) {
  return std::make_unique<CTarnFWL7Attribute>(key, value);
}

/// An element that is no attribute.
class OtherElement final : public CTarnFWContainerElement {
 public:
  OtherElement() : CTarnFWContainerElement(FW_CONTAINER_ELEMENT_ATTRIBUTE) {}
  FWContElementType getTlvType() const override { return elementType(); }
  unsigned int getTlvLength() const override { return 0; }
  bool serializeValue(void*, unsigned int, unsigned int*) const override { return true; }
  bool operator==(const CTarnFWContainerElement&) const override { return false; }
  bool operator<(const CTarnFWContainerElement&) const override { return false; }
  std::string toString() const override { return "other"; }
};

}  // namespace

TEST(TarnFWAttrProfile, IsAContainerOfTypeTwo) {
  CTarnFWAttrProfile profile("p");
  profile.addAttribute(attribute(FW_ATTR_KEY_APP_ID, 33));
  EXPECT_EQ(profile.getContainerType(), 2u);
  EXPECT_EQ(profile.getType(), 136);
  Bytes bytes(38, 0xee);
  unsigned int written = 0;
  EXPECT_TRUE(profile.toMessage(bytes.data(), 38, &written));
  EXPECT_EQ(bytes, Bytes(38)
                       .at(0, {2, 0, 0, 0, 1, 0, 0, 0, 26, 0, 0, 0})
                       .at(12, {1, 0, 0, 0, 18, 0, 0, 0, 0, 0, 2, 0, 18, 0, 0, 0, 0, 0, 33}));
}

TEST(TarnFWAttrProfile, ValuesOfOneKeyStandInOneGroup) {
  CTarnFWAttrProfile profile("web");
  EXPECT_TRUE(profile.addAttribute(attribute(FW_ATTR_KEY_TLS_VERSION, 771)));
  EXPECT_TRUE(profile.addAttribute(attribute(FW_ATTR_KEY_APP_ID, 34)));
  EXPECT_TRUE(profile.addElement(attribute(FW_ATTR_KEY_APP_ID, 33)));
  EXPECT_EQ(profile.toString(),
            "web with {\n"
            "[ APP_ID : APP_UDP, APP_ICMPV6],\n"
            "[ TLS_VERSION : TLS_V12]\n"
            "}");
}

TEST(TarnFWAttrProfile, AnEmptyProfileHasNoGroup) {
  EXPECT_EQ(CTarnFWAttrProfile("web").toString(), "web with {\n\n}");
}

TEST(TarnFWAttrProfile, AnEqualAttributeStaysOnceInTheContainerAndInItsGroup) {
  CTarnFWAttrProfile profile("web");
  EXPECT_TRUE(profile.addElement(attribute(FW_ATTR_KEY_APP_ID, 33)));
  EXPECT_FALSE(profile.addElement(attribute(FW_ATTR_KEY_APP_ID, 33)));
  EXPECT_FALSE(profile.addAttribute(attribute(FW_ATTR_KEY_APP_ID, 33)));
  EXPECT_EQ(profile.getCount(), 1u);
  // The dropped objects are gone: the text is made of what the container holds.
  EXPECT_EQ(profile.toString(), "web with {\n[ APP_ID : APP_UDP]\n}");
}

TEST(TarnFWAttrProfile, WhatIsNoAttributeIsLoggedAndChangesNothing) {
  CTarnFWAttrProfile profile("web");
  LogCapture log;
  EXPECT_FALSE(profile.addElement(nullptr));
  EXPECT_TRUE(log.has(LOG_ERR, "element is not an attribute\n"));
  log.clear();
  EXPECT_FALSE(profile.addElement(std::make_unique<OtherElement>()));
  EXPECT_TRUE(log.has(LOG_ERR, "element is not an attribute\n"));
  EXPECT_EQ(profile.getCount(), 0u);
}

TEST(TarnFWAttrProfile, ANullAttributeIsLoggedAsANullElement) {
  CTarnFWAttrProfile profile("web");
  LogCapture log;
  EXPECT_FALSE(profile.addAttribute(nullptr));
  EXPECT_TRUE(log.has(LOG_ERR, "element is not an attribute\n"));
  EXPECT_EQ(profile.getCount(), 0u);
}

TEST(TarnFWAttrProfile, ANameOf38CharactersThrows) {
  const std::string name(38, 'n');
  EXPECT_THROW_WITH(CTarnFWAttrProfile{name}, CInvalidContainerNameException, 69,
                    "invalid container name: " + name + "(size: 38greater than max size: 37)");
}

TEST(TarnFWAttrProfile, ReadingAChainFillsTheGroups) {
  CTarnFWAttrProfile first("web");
  first.addAttribute(attribute(FW_ATTR_KEY_HTTP_METHOD, 2));
  first.addAttribute(attribute(FW_ATTR_KEY_HTTP_METHOD, 0));
  first.addAttribute(attribute(FW_ATTR_KEY_FTP_COMMAND, 1));
  Bytes bytes(first.getMsgSize());
  ASSERT_TRUE(first.toMessage(bytes.data(), first.getMsgSize(), nullptr));
  CTarnFWAttrProfile second("web");
  ASSERT_TRUE(second.parseTLVChain(reinterpret_cast<const FWtlvChain*>(bytes.data()),
                                   static_cast<unsigned int>(bytes.size())));
  EXPECT_EQ(second.toString(), "web with {\n[ HTTP_METHOD : GET, POST],\n[ FTP_COMMAND : LS]\n}");
}
