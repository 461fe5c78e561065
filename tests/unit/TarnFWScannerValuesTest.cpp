// The scanner on numbers, ports and addresses.
#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "ScannedTokens.h"

using namespace ScannedTokens;

TEST(TarnFWScanner, TakesTwoNumbersWithAColonForARangeAndSixPairsForAnEthernetAddress) {
  EXPECT_EQ(scan("12:34"), Tokens{"RANGE(12 34)"});
  EXPECT_EQ(scan("12:34:56:78:9a:bc"), Tokens{"ETHER(123456789abc)"});
  EXPECT_EQ(scan("12:34:56"),
            (Tokens{"RANGE(12 34)", "#" + std::to_string(TK_COLON), "NUMBER(56)"}));
}

TEST(TarnFWScanner, ReadsEthernetForms) {
  EXPECT_EQ(scan("00:1A:2b:3C:4d:5E"), Tokens{"ETHER(001a2b3c4d5e)"});
  EXPECT_EQ(scan("00:11:22:33:44:55-00:11:22:33:44:66"),
            Tokens{"ETHER_RANGE(001122334455 001122334466)"});
  EXPECT_EQ(scan("00:11:22:33:44:55/ff:ff:ff:00:00:00"),
            Tokens{"ETHER_MASK(001122334455 ffffff000000)"});
}

TEST(TarnFWScanner, LeavesTheMeaningOfAnIPv4AddressToOthers) {
  EXPECT_EQ(scan("999.1.1.1"), Tokens{"IPV4(999.1.1.1)"});
  EXPECT_EQ(scan("1.2.3.4/33"), Tokens{"IPV4_CIDR(1.2.3.4/33)"});
  EXPECT_EQ(scan("1.2.3.4/100"), (Tokens{"IPV4_CIDR(1.2.3.4/10)", "NUMBER(0)"}));
  EXPECT_EQ(scan("1.2.3.4/255.255.0.0"), Tokens{"IPV4_MASK(1.2.3.4/255.255.0.0)"});
}

TEST(TarnFWScanner, ReadsAtMostFiveDigitsOfAPort) {
  EXPECT_EQ(scan("1.2.3.4:80"), Tokens{"IPV4_PORT(1.2.3.4:80)"});
  EXPECT_EQ(scan("1.2.3.4:123456"), (Tokens{"IPV4_PORT(1.2.3.4:12345)", "NUMBER(6)"}));
  EXPECT_EQ(scan("any:65535"), Tokens{"ANY_PORT(any:65535)"});
}

TEST(TarnFWScanner, TakesAnyWithAPortInLowerCaseOnly) {
  EXPECT_EQ(scan("ANY:80"),
            (Tokens{"#" + std::to_string(TK_ANY), "#" + std::to_string(TK_COLON), "NUMBER(80)"}));
}

TEST(TarnFWScanner, ReadsIPv4Ranges) {
  EXPECT_EQ(scan("10.0.0.5-9"), Tokens{"IPV4_RANGE(10.0.0.5 10.0.0.9)"});
  EXPECT_EQ(scan("10.0.0.5-250"), Tokens{"IPV4_RANGE(10.0.0.5 10.0.0.250)"});
  EXPECT_EQ(scan("10.0.0.5-10.0.1.6"), Tokens{"IPV4_RANGE(10.0.0.5 10.0.1.6)"});
}

TEST(TarnFWScanner, RefusesIPv4RangesWithTheBadPartInTheMessage) {
  EXPECT_EQ(failure("10.0.0.256-9"), "33|invalid ip address - 10.0.0.256");
  EXPECT_EQ(failure("10.0.0.5-256"), "33|invalid ip address - 10.0.0.256");
  EXPECT_EQ(failure("10.0.0.5-010"), "33|invalid ip address - 10.0.0.010");
  EXPECT_EQ(failure("300.0.0.1-10.0.0.2"), "33|invalid ip address - 300.0.0.1");
  EXPECT_EQ(failure("10.0.0.1-10.0.0.999"), "33|invalid ip address - 10.0.0.999");
}

TEST(TarnFWScanner, ReadsEveryShapeOfAnIPv6Address) {
  for (const char* text : {"1:2:3:4:5:6:7:8",
                           "1:2:3:4:5:6:1.2.3.4",
                           "::",
                           "::1",
                           "::1:2:3:4:5:6:7",
                           "::1.2.3.4",
                           "::1:2:3:4:5:1.2.3.4",
                           "1::",
                           "1::2:3:4:5:6:7",
                           "1::2:3:4:5:1.2.3.4",
                           "1:2::",
                           "1:2::3:4:5:6:7",
                           "1:2::3:4:5:1.2.3.4",
                           "1:2:3::4:5:6:7",
                           "1:2:3::4:5:1.2.3.4",
                           "1:2:3:4::5:6:7",
                           "1:2:3:4::5:1.2.3.4",
                           "1:2:3:4:5::6:7",
                           "1:2:3:4:5::1.2.3.4",
                           "1:2:3:4:5:6::7",
                           "1:2:3:4:5:6::",
                           "1:2:3:4:5:6:7::",
                           "abcd::",
                           "fe80::ABCD"}) {
    EXPECT_EQ(scan(text), Tokens{std::string("IPV6(") + text + ")"});
    in6_addr address;
    EXPECT_EQ(inet_pton(AF_INET6, text, &address), 1) << text;
  }
}

TEST(TarnFWScanner, TakesAGroupOfFiveDigitsForAnIdentifier) {
  EXPECT_EQ(scan("abcde::1"), (Tokens{"STRING(abcde)", "IPV6(::1)"}));
}

TEST(TarnFWScanner, ReadsIPv6PrefixesMasksAndRanges) {
  EXPECT_EQ(scan("2001:db8::/32"), Tokens{"IPV6_CIDR(2001:db8::/32)"});
  EXPECT_EQ(scan("2001:db8::/999"), Tokens{"IPV6_CIDR(2001:db8::/999)"});
  EXPECT_EQ(scan("2001:db8::/ffff:ffff::"), Tokens{"IPV6_CIDR(2001:db8::/ffff:ffff::)"});
  EXPECT_EQ(scan("2001:db8::1-2001:db8::1.2.3.4"),
            Tokens{"IPV6_RANGE(2001:db8::1 2001:db8::102:304)"});
}

TEST(TarnFWScanner, RefusesIPv6RangesWithTheBadPartInTheMessage) {
  EXPECT_EQ(failure("::1.2.3.400-::1"), "33|invalid ip address - ::1.2.3.400");
  EXPECT_EQ(failure("::1-::999.1.1.1"), "33|invalid ip address - ::999.1.1.1");
}

TEST(TarnFWScanner, TakesAUuidForAString) {
  EXPECT_EQ(scan(kUuid), Tokens{std::string("STRING(") + kUuid + ")"});
  EXPECT_EQ(scan("12345678-1234-1234-1234-123456789012"),
            Tokens{"STRING(12345678-1234-1234-1234-123456789012)"});
  EXPECT_EQ(scan("12345678-1234"), Tokens{"RANGE(12345678 1234)"});
}

TEST(TarnFWScanner, WritesAUuidWithAPortInTheFormOfTheHostsFiles) {
  for (const char* port : {":7", ".007"}) {
    EXPECT_EQ(scan(kUuid + std::string(port)), Tokens{std::string("ID_PORT(") + kGfy + " 7)"});
  }
  EXPECT_EQ(scan(kUuid + std::string(".1234")),
            (Tokens{std::string("ID_PORT(") + kGfy + " 123)", "NUMBER(4)"}));
  EXPECT_EQ(scan("12345678-9ABC-DEF0-1234-56789ABCDEF0:9"),
            Tokens{std::string("ID_PORT(") + kGfy + " 9)"});
}

TEST(TarnFWScanner, ReadsDecimalsWithASignAndIgnoredSuffixes) {
  EXPECT_EQ(scan("0 12 -7 5u 5U 5l 5L 5uL"),
            (Tokens{"NUMBER(0)", "NUMBER(12)", "NUMBER(-7)", "NUMBER(5)", "NUMBER(5)", "NUMBER(5)",
                    "NUMBER(5)", "NUMBER(5)"}));
  EXPECT_EQ(scan("-1-2"), (Tokens{"NUMBER(-1)", "NUMBER(-2)"}));
}

TEST(TarnFWScanner, ReadsDecimalsOfSixtyFourBitsAndRefusesMore) {
  EXPECT_EQ(scan("9223372036854775807 -9223372036854775808"),
            (Tokens{"NUMBER(9223372036854775807)", "NUMBER(-9223372036854775808)"}));
  EXPECT_EQ(failure("9223372036854775808"), "16|decimal integer overflows - 9223372036854775808");
  EXPECT_EQ(failure("-9223372036854775809u"),
            "16|decimal integer overflows - -9223372036854775809u");
}

TEST(TarnFWScanner, ReadsHexadecimalsWithOneSuffixOfEachKind) {
  errno = 0;
  EXPECT_EQ(scan("0x10 0xfFuL"), (Tokens{"NUMBER(16)", "NUMBER(255)"}));
  EXPECT_EQ(scan("0x1fLL"), (Tokens{"NUMBER(31)", "STRING(L)"}));
  EXPECT_EQ(failure("0x8000000000000000"), "16|hex integer overflows - 0x8000000000000000");
}

TEST(TarnFWScanner, FailsAGoodHexadecimalOnAnErrorThatEarlierWorkLeft) {
  errno = ENOENT;
  EXPECT_EQ(failure("0x10"), "16|hex integer overflows - 0x10");
}

TEST(TarnFWScanner, ClearsAnEarlierErrorBeforeDecimalsAndRanges) {
  errno = ENOENT;
  EXPECT_EQ(failure("10 0x10"), "0|");
  errno = ENOENT;
  EXPECT_EQ(failure("1-2 0x10"), "0|");
}

TEST(TarnFWScanner, CutsTheBoundsOfARangeToThirtyTwoBitsAndLeavesTheirOrder) {
  EXPECT_EQ(scan("9-1 80-80 4294967297:4294967298"),
            (Tokens{"RANGE(9 1)", "RANGE(80 80)", "RANGE(1 2)"}));
}

TEST(TarnFWScanner, RefusesBoundsOfMoreThanSixtyFourBits) {
  EXPECT_EQ(failure("9223372036854775808-1"),
            "16|low bound of decimal range overflows - 9223372036854775808-1");
  EXPECT_EQ(failure("1:9223372036854775808"),
            "16|high bound of decimal range overflows - 1:9223372036854775808");
}
