#include <gtest/gtest.h>

#include "tarnfw.h"

TEST(StatusToString, EveryCodeHasItsText) {
  const char* const texts[] = {
      "ok",
      "lib not initialized",
      "invalid lib handle",
      "invalid argument",
      "invalid input buffer",
      "unknown error",
      "internal error",
      "not supported",
      "out of memory",
      "input buffer too small",
      "cannot initialize io channel",
      "socket error",
      "cannot load file",
      "cannot rename file",
      "cannot delete file",
      "unknown io channel",
      "parsing error",
      "integer too large",
      "unsupported version",
      "ioctl failed",
      "slowpath ioctl failed",
      "switch port not found",
      "kernel unsupported",
      "bad transaction",
      "bad update",
      "bad message",
      "bad state",
      "no rule",
      "no ruleset",
      "no addrset",
      "no address",
      "name too long",
      "id too long",
      "invalid network address",
      "invalid addrset type",
      "invalid attribute",
      "invalid attrset type",
      "invalid rule action",
      "invalid tcp/udp port",
      "too many tcp/udp ports",
      "invalid tcp flags",
      "invalid tcp options",
      "invalid rule direction",
      "invalid protocol spec",
      "missing jump target",
      "invalid rule",
      "invalid rule target",
      "invalid vnic uuid",
      "vnic uuid not found",
      "invalid vnic uuid set",
      "ipfix packet full",
      "missing NAT target",
      "unknown protocol name",
      "rule address mismatch",
      "invalid switch uuid",
      "component not found",
      "reached maximal components",
      "invalid address family",
      "invalid timeout",
      "cannot save file",
      "bad dscp markings",
      "Threshold crossed",
      "invalid filter name",
      "invalid vif uuid",
      "failed to get firewall config",
      "kernel out of memory",
      "invalid attribute key",
      "invalid attribute value",
      "unmapped encoded int attribute",
      "invalid container name",
      "failed to find uid to sid mapping",
  };
  ASSERT_EQ(std::size(texts), 71u);
  for (unsigned int code = 0; code < std::size(texts); ++code) {
    EXPECT_STREQ(FW_StatusToString(code), texts[code]) << code;
  }
}

TEST(StatusToString, SeventyIsTheLastKnownCode) {
  EXPECT_STREQ(FW_StatusToString(70), "failed to find uid to sid mapping");
  EXPECT_STREQ(FW_StatusToString(71), "unknown error code: 71");
  EXPECT_STREQ(FW_StatusToString(4294967295u), "unknown error code: 4294967295");
}

TEST(StatusToString, ALaterUnknownCodeOverwritesAnEarlierOne) {
  const char* first = FW_StatusToString(100);
  const char* second = FW_StatusToString(72);
  EXPECT_EQ(first, second);
  EXPECT_STREQ(first, "unknown error code: 72");
}
