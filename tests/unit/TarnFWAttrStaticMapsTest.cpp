#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <string>
#include <vector>

#include "TarnFWAttrStaticMaps.h"

using namespace TarnFirewall;

namespace {

/// FNV-1a, 64 bits, over the rows with a newline after each: changes with any name and any order.
std::uint64_t fingerprint(const FWAttrNames& names) {
  std::uint64_t hash = 0xcbf29ce484222325;
  const auto add = [&](char c) { hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3; };
  for (unsigned int row = 0; row < names.size(); ++row) {
    for (const char* c = names[row]; *c != '\0'; ++c) add(*c);
    add('\n');
  }
  return hash;
}

/// Number of a name, or -1000 for none.
long numberOf(const FWAttrStr2IntMap& map, const std::string& name) {
  long value = -1000;
  const bool found = map.find(name, &value);
  EXPECT_EQ(found, value != -1000);
  return value;
}

/// Name of a number, or "none".
std::string nameOf(const FWAttrInt2StrMap& map, long value) {
  const char* const name = map.find(value);
  return name != nullptr ? name : "none";
}

}  // namespace

TEST(TarnFWAttrStaticMaps, ApplicationListHasAllRowsInItsOrder) {
  EXPECT_EQ(APP_ID_value2str_length, 1977u);
  EXPECT_EQ(APP_ID_value2str.size(), 1977u);
  EXPECT_STREQ(APP_ID_value2str[0], "APP_INVALID");
  EXPECT_STREQ(APP_ID_value2str[1], "APP_ALL");
  EXPECT_STREQ(APP_ID_value2str[2], "APP_ETH");
  EXPECT_STREQ(APP_ID_value2str[1976], "APP_BITTOWEB");
  // Made from the published list by another program.
  EXPECT_EQ(fingerprint(APP_ID_value2str), 0x5330b1bf51ce8d14u);
}

TEST(TarnFWAttrStaticMaps, ApplicationNumbersBeginAtMinusOne) {
  EXPECT_EQ(numberOf(g_APP_ID_str2int_map, "APP_INVALID"), -1);
  EXPECT_EQ(numberOf(g_APP_ID_str2int_map, "APP_ALL"), 0);
  EXPECT_EQ(numberOf(g_APP_ID_str2int_map, "APP_UDP"), 33);
  EXPECT_EQ(numberOf(g_APP_ID_str2int_map, "APP_SSL"), 321);
  EXPECT_EQ(numberOf(g_APP_ID_str2int_map, "APP_CONCUR"), 1000);
  EXPECT_EQ(numberOf(g_APP_ID_str2int_map, "APP_BITTOWEB"), 1975);
}

TEST(TarnFWAttrStaticMaps, EveryApplicationIsFoundByNameAndByNumber) {
  for (unsigned int row = 0; row < APP_ID_value2str.size(); ++row) {
    const long value = static_cast<long>(row) - 1;
    EXPECT_EQ(numberOf(g_APP_ID_str2int_map, APP_ID_value2str[row]), value);
    EXPECT_EQ(nameOf(g_APP_ID_int2str_map, value), APP_ID_value2str[row]);
    EXPECT_EQ(nameOf(FWAttribute_APP_ID_value2str_map, value), APP_ID_value2str[row]);
  }
}

TEST(TarnFWAttrStaticMaps, NamesOutsideTheTableAreNotFound) {
  for (const std::string name :
       {"", "APP_", "APP_UD", "APP_UDPX", "app_udp", "UDP", "APP_NOSUCHAPPLICATION"}) {
    EXPECT_EQ(numberOf(g_APP_ID_str2int_map, name), -1000) << name;
  }
  EXPECT_EQ(numberOf(g_APP_ID_str2int_map, std::string("APP_UDP\0", 8)), -1000);
  EXPECT_EQ(numberOf(g_APP_ID_str2int_map, std::string("APP_UDP\0APP_ICMPV6", 18)), -1000);
  EXPECT_EQ(numberOf(g_APP_ID_str2int_map, std::string(100000, 'A')), -1000);
}

TEST(TarnFWAttrStaticMaps, NumbersOutsideTheTableHaveNoName) {
  for (const long value : {-2L, 1976L, -2147483648L, 4294967295L, 4294967296L,
                           std::numeric_limits<long>::min(), std::numeric_limits<long>::max()}) {
    EXPECT_EQ(nameOf(g_APP_ID_int2str_map, value), "none") << value;
  }
}

TEST(TarnFWAttrStaticMaps, CipherSuitesHave304RowsTheLast59Repeated) {
  EXPECT_EQ(TLS_CIPHER_SUITE_value2str_length, 304u);
  EXPECT_EQ(TLS_CIPHER_SUITE_value2str.size(), 304u);
  EXPECT_STREQ(TLS_CIPHER_SUITE_value2str[0], "TLS_NULL_WITH_NULL_NULL");
  EXPECT_STREQ(TLS_CIPHER_SUITE_value2str[28], "SSL_FORTEZZA_KEA_WITH_NULL_SHA");
  EXPECT_STREQ(TLS_CIPHER_SUITE_value2str[52], "TLS_DH_ANON_WITH_AES_128_CBC_SHA");
  EXPECT_STREQ(TLS_CIPHER_SUITE_value2str[185], "TLS_RSA_PSK_WITH_NULL_SHA384");
  EXPECT_STREQ(TLS_CIPHER_SUITE_value2str[186], "TLS_ECDH_ECDSA_WITH_NULL_SHA");
  for (unsigned int row = 186; row < 245; ++row) {
    EXPECT_STREQ(TLS_CIPHER_SUITE_value2str[row], TLS_CIPHER_SUITE_value2str[row + 59]);
  }
  EXPECT_EQ(fingerprint(TLS_CIPHER_SUITE_value2str), 0x8c04afa6d25aa4cbu);
}

TEST(TarnFWAttrStaticMaps, CipherSuiteMapsKnowEachNamedCodePointOnce) {
  std::set<long> named;
  for (long value = -10; value <= 70000; ++value) {
    const std::string name = nameOf(g_TLS_CIPHER_SUITE_int2str_map, value);
    if (name == "none") continue;
    named.insert(value);
    EXPECT_EQ(numberOf(g_TLS_CIPHER_SUITE_str2int_map, name), value);
    const long row = value < 186 ? value : value - 48967;
    EXPECT_STREQ(TLS_CIPHER_SUITE_value2str[static_cast<std::size_t>(row)], name.c_str());
  }
  // 186 and 59 code points, less the 25 from 71 to 95 and the 18 from 110 to 127 without a name.
  EXPECT_EQ(named.size(), 186u + 59u - 25u - 18u);
  EXPECT_EQ(*named.begin(), 0);
  EXPECT_EQ(*named.rbegin(), 49211);
  for (const long value : {71L, 95L, 110L, 127L, 186L, 245L, 303L, 49152L, 49212L}) {
    EXPECT_EQ(named.count(value), 0u) << value;
  }
}

TEST(TarnFWAttrStaticMaps, ACodePointWithoutANameKeepsItsRowAndIsInNoMap) {
  EXPECT_STREQ(TLS_CIPHER_SUITE_value2str[0x47], "UNASSIGNED_0x0047");
  EXPECT_EQ(numberOf(g_TLS_CIPHER_SUITE_str2int_map, "UNASSIGNED_0x0047"), -1000);
  EXPECT_EQ(nameOf(g_TLS_CIPHER_SUITE_int2str_map, 0x47), "none");
}

TEST(TarnFWAttrStaticMaps, SmallTablesHaveTheirNamesAndNumbers) {
  const struct {
    const FWAttrStr2IntMap& byName;
    const FWAttrInt2StrMap& byNumber;
    const FWAttrNames& rows;
    unsigned int length;
    long first;
    std::vector<std::string> names;
  } kTables[] = {
      {g_TLS_VERSION_str2int_map,
       g_TLS_VERSION_int2str_map,
       TLS_VERSION_value2str,
       TLS_VERSION_value2str_length,
       767,
       {"UNKNOWN", "SSL_V3", "TLS_V10", "TLS_V11", "TLS_V12", "TLS_V13"}},
      {g_CIFS_SMB_VERSION_str2int_map,
       g_CIFS_SMB_VERSION_int2str_map,
       CIFS_SMB_VERSION_value2str,
       CIFS_SMB_VERSION_value2str_length,
       0,
       {"CIFS_SMB_INVALID", "CIFS_SMB_V1", "CIFS_SMB_V2"}},
      {g_HTTP_METHOD_str2int_map,
       g_HTTP_METHOD_int2str_map,
       HTTP_METHOD_value2str,
       HTTP_METHOD_value2str_length,
       0,
       {"GET", "HEAD", "POST", "PUT", "DELETE", "CONNECT", "OPTIONS", "TRACE"}},
      {g_FTP_COMMAND_str2int_map,
       g_FTP_COMMAND_int2str_map,
       FTP_COMMAND_value2str,
       FTP_COMMAND_value2str_length,
       0,
       {"UNKNOWN", "LS", "GET", "PUT"}},
  };
  for (const auto& table : kTables) {
    ASSERT_EQ(table.rows.size(), table.names.size());
    EXPECT_EQ(table.length, table.names.size());
    for (std::size_t row = 0; row < table.names.size(); ++row) {
      const long value = table.first + static_cast<long>(row);
      EXPECT_EQ(table.rows[row], table.names[row]);
      EXPECT_EQ(numberOf(table.byName, table.names[row]), value);
      EXPECT_EQ(nameOf(table.byNumber, value), table.names[row]);
    }
    EXPECT_EQ(nameOf(table.byNumber, table.first - 1), "none");
    EXPECT_EQ(nameOf(table.byNumber, table.first + static_cast<long>(table.names.size())), "none");
    EXPECT_EQ(numberOf(table.byName, "APP_ALL"), -1000);
  }
}

TEST(TarnFWAttrStaticMaps, KeyTableHoldsTheRecordOfEachKey) {
  const struct {
    const char* name;
    int type, discovery, toSlowPath, toFastPath;
    std::uint32_t addressType;
  } kRows[] = {
      {"APP_ID", 2, 1, 1, 1, 6},           {"TLS_VERSION", 2, 1, 1, 1, 6},
      {"TLS_CIPHER_SUITE", 2, 1, 1, 1, 6}, {"CIFS_SMB_VERSION", 2, 1, 1, 1, 6},
      {"HTTP_METHOD", 2, 2, 1, 0, 6},      {"HTTP_PATH", 3, 2, 1, 0, 9},
      {"FTP_COMMAND", 2, 2, 1, 0, 6},      {"FQDN", 3, 0, 0, 1, 9},
      {"WIN_SID", 4, 0, 0, 1, 8},          {"USER_SID", 4, 0, 0, 1, 8},
      {"PROCESS_HASH", 1, 0, 0, 0, 7},     {"CTX_PROFILE_ID", 3, 2, 0, 0, 9},
  };
  for (int id = 0; id < 12; ++id) {
    const auto& row = kRows[id];
    const _FWAttrKey& key = fwAttrKeyVector[static_cast<std::size_t>(id)];
    EXPECT_EQ(key.keyId, id);
    EXPECT_EQ(key.valueType, row.type) << row.name;
    EXPECT_EQ(static_cast<int>(key.discovery), row.discovery) << row.name;
    EXPECT_EQ(static_cast<int>(key.actionToSlowPath), row.toSlowPath) << row.name;
    EXPECT_EQ(static_cast<int>(key.actionToFastPath), row.toFastPath) << row.name;
    EXPECT_EQ(numberOf(str2DPIDMap, row.name), id);
    EXPECT_EQ(nameOf(dpID2strMap, id), row.name);
    EXPECT_EQ(mpID2dpIDMap.find(10000 + id), id);
    EXPECT_EQ(nameOf(FWAttribute_value2str_map, 10000 + id), row.name);
    EXPECT_EQ(numberOf(FWAttribute_str2key_map, row.name), id);
    ASSERT_NE(FWAttribute_key2type_map.find(static_cast<std::uint32_t>(id)), nullptr);
    EXPECT_EQ(*FWAttribute_key2type_map.find(static_cast<std::uint32_t>(id)), row.addressType);
  }
  EXPECT_EQ(nameOf(dpID2strMap, 12), "none");
  EXPECT_EQ(nameOf(FWAttribute_value2str_map, 11), "none");
  EXPECT_EQ(nameOf(FWAttribute_value2str_map, 10012), "none");
  EXPECT_EQ(FWAttribute_key2type_map.find(12), nullptr);
  for (const int id :
       {-1, 0, 11, 9999, 10012, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
    EXPECT_EQ(mpID2dpIDMap.find(id), FW_ATTR_KEY_NONE) << id;
  }
}

TEST(TarnFWAttrStaticMaps, OnlyKeysOfEncodedValuesHaveMaps) {
  const FWAttrStr2IntMap* const kByName[12] = {
      &g_APP_ID_str2int_map,           &g_TLS_VERSION_str2int_map, &g_TLS_CIPHER_SUITE_str2int_map,
      &g_CIFS_SMB_VERSION_str2int_map, &g_HTTP_METHOD_str2int_map, nullptr,
      &g_FTP_COMMAND_str2int_map};
  const FWAttrInt2StrMap* const kByNumber[12] = {
      &g_APP_ID_int2str_map,           &g_TLS_VERSION_int2str_map, &g_TLS_CIPHER_SUITE_int2str_map,
      &g_CIFS_SMB_VERSION_int2str_map, &g_HTTP_METHOD_int2str_map, nullptr,
      &g_FTP_COMMAND_int2str_map};
  for (std::size_t key = 0; key < 12; ++key) {
    EXPECT_EQ(g_Str2EintMapsRefs[key], kByName[key]) << key;
    EXPECT_EQ(g_Eint2StrMapsRefs[key], kByNumber[key]) << key;
    EXPECT_EQ(kByName[key] != nullptr, fwAttrKeyVector[key].valueType == FW_ATTR_VALUE_EINT);
  }
}

TEST(TarnFWAttrStaticMaps, BuildsAKeyRecordFromItsFields) {
  constexpr _FWAttrKey key =
      BuildFWAttrKey(FW_ATTR_KEY_FQDN, FW_ATTR_VALUE_UUID, FWAttrDiscovery{3},
                     FWAttrActionToSlowPath{4}, FWAttrActionToFastPath{5});
  EXPECT_EQ(key.keyId, FW_ATTR_KEY_FQDN);
  EXPECT_EQ(key.valueType, FW_ATTR_VALUE_UUID);
  EXPECT_EQ(static_cast<int>(key.discovery), 3);
  EXPECT_EQ(static_cast<int>(key.actionToSlowPath), 4);
  EXPECT_EQ(static_cast<int>(key.actionToFastPath), 5);
}
