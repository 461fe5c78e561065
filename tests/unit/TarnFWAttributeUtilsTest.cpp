#include <gtest/gtest.h>
#include <syslog.h>

#include "LogCapture.h"
#include "TarnFWAttributeUtils.h"

using namespace TarnFirewall;

namespace {

constexpr auto key(int number) { return static_cast<FWAttrKeyID>(number); }

}  // namespace

TEST(TarnFWAttributeUtils, KeyRecordsAreFoundByKey) {
  for (int id = 0; id < 12; ++id) {
    ASSERT_NE(dpID2attrkey(key(id)), nullptr);
    EXPECT_EQ(dpID2attrkey(key(id))->keyId, id);
  }
  EXPECT_EQ(dpID2attrkey(key(12)), nullptr);
  EXPECT_EQ(dpID2attrkey(key(-1)), nullptr);
  EXPECT_EQ(dpID2attrkey(key(0x7fffffff)), nullptr);
}

TEST(TarnFWAttributeUtils, KeyRecordsAreFoundByTheExternalId) {
  ASSERT_NE(mpID2attrkey(10011), nullptr);
  EXPECT_EQ(mpID2attrkey(10011)->keyId, FW_ATTR_KEY_CTX_PROFILE_ID);
  ASSERT_NE(mpID2attrkey(10000), nullptr);
  EXPECT_EQ(mpID2attrkey(10000)->keyId, FW_ATTR_KEY_APP_ID);
  EXPECT_EQ(mpID2attrkey(11), nullptr);
  EXPECT_EQ(mpID2attrkey(9999), nullptr);
  EXPECT_EQ(mpID2attrkey(10012), nullptr);
}

TEST(TarnFWAttributeUtils, KeysAreFoundByName) {
  ASSERT_NE(str2attrkey("WIN_SID"), nullptr);
  EXPECT_EQ(str2attrkey("WIN_SID")->keyId, FW_ATTR_KEY_WIN_SID);
  EXPECT_EQ(str2attrkey("win_sid"), nullptr);
  EXPECT_EQ(str2dpID("FQDN"), FW_ATTR_KEY_FQDN);
}

TEST(TarnFWAttributeUtils, ANameThatIsNoKeyGivesTwelve) {
  EXPECT_EQ(str2dpID("NO_SUCH_KEY"), 12);
  EXPECT_EQ(str2dpID(""), 12);
}

TEST(TarnFWAttributeUtils, ANumberThatIsNoKeyHasAnEmptyName) {
  EXPECT_EQ(dpID2str(FW_ATTR_KEY_TLS_CIPHER_SUITE), "TLS_CIPHER_SUITE");
  EXPECT_EQ(dpID2str(FW_ATTR_KEY_NONE), "");
  EXPECT_EQ(dpID2str(key(-1)), "");
}

TEST(TarnFWAttributeUtils, NamesOfValuesGiveTheirNumbers) {
  long value = 0;
  EXPECT_TRUE(str2eint(FW_ATTR_KEY_TLS_VERSION, "TLS_V12", &value));
  EXPECT_EQ(value, 771);
  EXPECT_TRUE(str2eint(FW_ATTR_KEY_FTP_COMMAND, "GET", &value));
  EXPECT_EQ(value, 2);
  EXPECT_TRUE(str2eint(FW_ATTR_KEY_HTTP_METHOD, "GET", &value));
  EXPECT_EQ(value, 0);
}

TEST(TarnFWAttributeUtils, AKeyWithoutNamedValuesIsRefusedSilently) {
  LogCapture log;
  long value = 77;
  EXPECT_FALSE(str2eint(FW_ATTR_KEY_FQDN, "GET", &value));
  EXPECT_FALSE(str2eint(FW_ATTR_KEY_NONE, "GET", &value));
  EXPECT_FALSE(str2eint(key(-1), "GET", &value));
  EXPECT_FALSE(str2eint(FW_ATTR_KEY_TLS_VERSION, "GET", &value));
  EXPECT_EQ(value, 77);
  EXPECT_TRUE(log.lines().empty());
}

TEST(TarnFWAttributeUtils, NumbersOfValuesGiveTheirNames) {
  std::string name;
  EXPECT_TRUE(eint2str(FW_ATTR_KEY_APP_ID, -1, &name));
  EXPECT_EQ(name, "APP_INVALID");
  EXPECT_TRUE(eint2str(FW_ATTR_KEY_TLS_CIPHER_SUITE, 49211, &name));
  EXPECT_EQ(name, "TLS_ECDHE_PSK_WITH_NULL_SHA384");
}

TEST(TarnFWAttributeUtils, ANumberWithoutANameIsAnErrorLineWithTheKey) {
  LogCapture log;
  std::string name = "kept";
  EXPECT_FALSE(eint2str(FW_ATTR_KEY_APP_ID, 1976, &name));
  EXPECT_TRUE(log.has(LOG_ERR, "APP_ID : failed to find value\n\n"));
  log.clear();
  EXPECT_FALSE(eint2str(FW_ATTR_KEY_FQDN, 0, &name));
  EXPECT_TRUE(log.has(LOG_ERR, "FQDN : failed to find key\n\n"));
  log.clear();
  EXPECT_FALSE(eint2str(FW_ATTR_KEY_NONE, 0, &name));
  EXPECT_TRUE(log.has(LOG_ERR, " : failed to find key\n\n"));
  EXPECT_EQ(name, "kept");
}

TEST(TarnFWAttributeUtils, InspectionStatesHaveNames) {
  EXPECT_STREQ(dpiState2Str(static_cast<FWDPIState>(0)), "NONE");
  EXPECT_STREQ(dpiState2Str(static_cast<FWDPIState>(1)), "PUNT");
  // The states 2 and 3 have no name that scripts know either.
  for (const unsigned int state : {2u, 3u, 4u, 5u, 255u, 0xffffffffu}) {
    EXPECT_STREQ(dpiState2Str(static_cast<FWDPIState>(state)), "UNKNOWN") << state;
  }
}

TEST(TarnFWAttributeUtils, AttributeAddressKeysAreFoundByName) {
  LogCapture log;
  EXPECT_EQ(FWAttribute_str2key("USER_SID"), 9u);
  EXPECT_TRUE(log.lines().empty());
  EXPECT_EQ(FWAttribute_str2key("user"), 12u);
  EXPECT_TRUE(log.has(LOG_WARNING, "attribute literal string name user not found\n"));
  EXPECT_EQ(FWAttribute_str2key(nullptr), 12u);
  EXPECT_TRUE(log.has(LOG_WARNING, "attribute literal string name (null) not found\n"));
}

TEST(TarnFWAttributeUtils, AttributeAddressKeysHaveTheirKindOfValue) {
  LogCapture log;
  EXPECT_EQ(FWAttribute_key2type(static_cast<FWAttrIDType>(0)), 6u);
  EXPECT_EQ(FWAttribute_key2type(static_cast<FWAttrIDType>(8)), 8u);
  EXPECT_TRUE(log.lines().empty());
  EXPECT_EQ(FWAttribute_key2type(static_cast<FWAttrIDType>(12)), FW_ATTR_ID_VALUE_NONE);
  EXPECT_TRUE(log.has(LOG_WARNING, "attribute key 12 not found\n"));
}

TEST(TarnFWAttributeUtils, AnApplicationNumberOutsideTheTableIsUnknown) {
  LogCapture log;
  EXPECT_STREQ(FWAttribute_APP_ID_value2str(1975), "APP_BITTOWEB");
  EXPECT_STREQ(FWAttribute_APP_ID_value2str(-1), "APP_INVALID");
  EXPECT_TRUE(log.lines().empty());
  EXPECT_STREQ(FWAttribute_APP_ID_value2str(1976), "unknown");
  EXPECT_TRUE(log.has(LOG_WARNING, "app protobuf value 1976 not found\n"));
}
