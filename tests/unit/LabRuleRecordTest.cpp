#include <gtest/gtest.h>

#include "LabAddressRecord.h"
#include "LabBench.h"
#include "LabChain.h"
#include "LabRuleRecord.h"

namespace TarnLab {
namespace {

void place(ByteVector& record, std::size_t offset, const ByteVector& bytes) {
  std::copy(bytes.begin(), bytes.end(), record.begin() + static_cast<std::ptrdiff_t>(offset));
}

/// A TCP rule, number 1006, from a block to a set, with both ports, logged.
ByteVector fullRule() {
  ByteVector rule = Record().bytes(ruleRecord(1006)).set(4, 3).set(790, 16 | 4 | 2 | 1 | 32);
  put16(rule, 794, 6);
  place(rule, 12, ipv4Block("192.0.2.0", 24));
  place(rule, 156, Record().u16(11).u8(1).u8(0).text("servers", 38));
  place(rule, 300, Record().u16(1 | 1 << 3).u8(0x1f).u8(0x90));
  place(rule, 338,
        Record().u16(2 | 3 << 3).u8(3).u8(0).u16(0x5000).u16(0x5a00).u16(0xbb01).to(34).u16(1));
  put16(rule, 796, 1 << 11);
  place(rule, 800, Record().u16(4 << 3 | 4).u8(0x12));
  place(rule, 808, Record().u16(5 << 3).u16(2).u8(2).u8(4));
  put16(rule, 460 + 291, 1);
  place(rule, 852, Record().text("web", 31));
  return rule;
}

TEST(LabRuleRecord, WritesAFullRuleAsTheLanguageDoes) {
  const ByteVector rule = fullRule();
  EXPECT_EQ(RuleRecord::fault(rule), "");
  EXPECT_EQ(RuleRecord::text(rule),
            "rule 1006 at 3 in protocol tcp with {strict, not flag 0x0012} from ip 192.0.2.0/24 "
            "port 8080 to not addrset servers port {80-90, 443} accept with log tag 'web';");
}

TEST(LabRuleRecord, WritesWhatIsLeftOutAsAny) {
  EXPECT_EQ(RuleRecord::text(ruleRecord(1)),
            "rule 1 at 0 inout protocol any from any to any accept;");
  ByteVector rule = Record().bytes(ruleRecord(2, 2)).set(790, 4 | 8 | 64).set(794, 8).set(795, 6);
  put32(rule, 4, 0xffffffff);
  EXPECT_EQ(RuleRecord::text(rule), "rule 2 out not ethertype 0x0806 from any to any drop;");
}

TEST(LabRuleRecord, WritesEveryAction) {
  const auto action = [](unsigned code, const ByteVector& data, std::size_t at = 0) {
    ByteVector rule = ruleRecord(1, code);
    place(rule, 460 + at, data);
    EXPECT_EQ(RuleRecord::fault(rule), "");
    const std::string text = RuleRecord::text(rule);
    const std::string head = "rule 1 at 0 inout protocol any from any to any ";
    EXPECT_EQ(text.substr(0, head.size()), head);
    return text.substr(head.size());
  };
  EXPECT_EQ(action(3, {}), "reject;");
  EXPECT_EQ(action(4, Record().text("web", 64)), "jumpto web;");
  EXPECT_EQ(action(5, {}), "punt;");
  EXPECT_EQ(action(6, {}), "divert;");
  EXPECT_EQ(action(7, ipv4("192.0.2.1")), "snat ip 192.0.2.1;");
  EXPECT_EQ(action(8, ipv4("192.0.2.1")), "dnat ip 192.0.2.1;");
  EXPECT_EQ(action(9, Record().u8(0).u8(10).u8(0xff).to(6)), "macrewrite 0:a:ff:0:0:0;");
  EXPECT_EQ(action(10, {}), "copy;");
  EXPECT_EQ(action(11, Record().text("k", 36), 293), "encrypt keypolicy k;");
  EXPECT_EQ(action(11, {}), "encrypt;");
  EXPECT_EQ(action(12, {}), "clear;");
  EXPECT_EQ(action(13, Record().u8(2).u8(0).u16(30).u16(5).text("x=1", 128), 148),
            "lb  lbtype L7 lbidletimeout 30 lbclosetimeout 5 lboptions x=1;");
  EXPECT_EQ(action(14, Record().text("ffffffff-ffff-ffff-ffff-ffffffffffff", 36), 293),
            "pbr pass-through;");
}

TEST(LabRuleRecord, WritesPortsAndPoolOfATranslation) {
  ByteVector rule = ruleRecord(1, 8);
  place(rule, 460, ipv4("192.0.2.1"));
  place(rule, 460 + 144, Record().u16(0x901f).u16(0x911f));
  put8(rule, 460 + 282, 1 | 2 | 4 << 2);
  put16(rule, 460 + 284, 60);
  EXPECT_EQ(RuleRecord::fault(rule), "");
  EXPECT_NE(RuleRecord::text(rule).find("dnat ip 192.0.2.1 port 8080-8081 poolopt round-robin 60;"),
            std::string::npos);
  put8(rule, 460 + 282, 1 | 6 << 2);
  EXPECT_NE(RuleRecord::text(rule).find("dnat ip 192.0.2.1 port 8080 unknown;"), std::string::npos);
}

TEST(LabRuleRecord, WritesFlagsAndApplication) {
  const auto flags = [](unsigned bits, unsigned application = 0) {
    ByteVector rule = ruleRecord(1);
    put16(rule, 460 + 291, static_cast<std::uint16_t>(bits));
    put16(rule, 460 + 288, static_cast<std::uint16_t>(application << 4));
    const std::string text = RuleRecord::text(rule);
    return text.substr(text.find("accept") + 6);
  };
  EXPECT_EQ(flags(0), ";");
  EXPECT_EQ(flags(8), " with noflow;");
  EXPECT_EQ(flags(3), " with {log,copy};");
  EXPECT_EQ(flags(0x11b), " with {log,copy,noflow,rtt,lbrule};");
  EXPECT_EQ(flags(4 | 1, 3), " with log as sunrpc;");
}

TEST(LabRuleRecord, WritesProfilesFamilyMarkAndTrivialTransfer) {
  ByteVector rule = Record().bytes(ruleRecord(1)).set(790, 16 | 4 | 128).set(793, 64).set(884, 12);
  put16(rule, 794, 17);
  place(rule, 380, Record().text("vm-1", 37));
  place(rule, 422, Record().text("tls", 37));
  place(rule, 338, Record().u16(2 | 1 << 3).u8(0).u8(69));
  EXPECT_EQ(RuleRecord::fault(rule), "");
  EXPECT_EQ(
      RuleRecord::text(rule),
      "# internal # rule 1 at 0 inout inet protocol udp from any to any port 69 with extended "
      "src vm-1 with attribute profile tls accept as tftp;");
  put8(rule, 793, 16);
  EXPECT_EQ(RuleRecord::text(rule).find("inet"), std::string::npos)
      << "a derived family is not printed";
}

TEST(LabRuleRecord, WritesMessageTypes) {
  ByteVector rule = Record().bytes(ruleRecord(1)).set(790, 16 | 4).set(794, 1);
  place(rule, 800, Record().u16(6 << 3).u8(1).to(6).u8(8));
  EXPECT_NE(RuleRecord::text(rule).find("protocol icmp icmptype 8 from"), std::string::npos);
  place(rule, 800, Record().u16(6 << 3).u8(3).to(6).u8(3).u8(1));
  EXPECT_NE(RuleRecord::text(rule).find("protocol icmp typecode 3:1 from"), std::string::npos);
}

TEST(LabRuleRecord, RefusesEveryReservedByteThatIsSet) {
  const ByteVector rule = fullRule();
  for (const std::size_t offset :
       {8u,   11u,  15u,  156u + 42u, 304u,        376u,        378u,        380u,
        418u, 420u, 422u, 460u,       460u + 149u, 460u + 283u, 460u + 286u, 460u + 329u,
        792u, 798u, 805u, 808u,       883u,        888u,        891u}) {
    EXPECT_NE(RuleRecord::fault(Record().bytes(rule).set(offset, 0xff)), "") << offset;
  }
  EXPECT_NE(RuleRecord::fault(Record().bytes(rule).set(791, 2)), "");
  EXPECT_NE(RuleRecord::fault(Record().bytes(rule).set(793, 1)), "");
}

TEST(LabRuleRecord, RefusesValuesThatNoRuleHas) {
  const ByteVector rule = fullRule();
  const auto fault = [&rule](std::size_t offset, unsigned value) {
    return RuleRecord::fault(Record().bytes(rule).set(offset, value));
  };
  EXPECT_EQ(fault(790, 16 | 4 | 2 | 1 | 96), "direction 3");
  EXPECT_EQ(RuleRecord::fault(Record().bytes(rule).set(790, 16 | 7 | 128).set(791, 1)),
            "address family 3");
  EXPECT_EQ(fault(790, 4 | 2 | 1), "source does not go with the rule's layer");
  EXPECT_EQ(fault(790, 16 | 4 | 2), "source is there without its flag");
  EXPECT_EQ(fault(12, 10), "source: address type 10");
  EXPECT_EQ(fault(20, 33), "source: prefix length 33");
  EXPECT_EQ(fault(19, 1), "source: address block is not masked");
  EXPECT_EQ(fault(338, 4 << 3), "destination port with head 0x0020");
  EXPECT_EQ(fault(340, 2), "destination port has more ports than it counts");
  EXPECT_EQ(fault(342, 0x70), "destination port has a bad range");
  EXPECT_EQ(fault(800, 7 << 3), "session spec of kind 7");
  EXPECT_EQ(fault(808, 6 << 3), "TCP options of another kind");
  EXPECT_EQ(fault(810, 41), "TCP options too long");
  EXPECT_EQ(fault(460 + 290, 0), "action 0");
  EXPECT_EQ(fault(460 + 290, 15), "action 15");
  EXPECT_EQ(fault(460 + 291, 0x20), "action flags 0x0020");
  EXPECT_EQ(fault(460 + 290, 4), "jump without a proper name");
  EXPECT_EQ(fault(884, 0), "profile mode 0");
  EXPECT_EQ(fault(884, 2), "profile mode 2");
  EXPECT_EQ(fault(884, 8), "attribute profile without a proper name");
  EXPECT_EQ(RuleRecord::fault(Record().bytes(ruleRecord(1)).set(884, 2)), "");
}

TEST(LabAddressRecord, WritesEveryType) {
  const auto text = [](const ByteVector& record) {
    EXPECT_EQ(AddressRecord::fault(record), "");
    return AddressRecord::text(record);
  };
  const auto address = [](unsigned type) { return Record().u16(type).u16(0); };
  const ByteVector six = Record().u8(0x20).u8(1).u8(0x0d).u8(0xb8).zero(11).u8(1);
  const ByteVector sixNext = Record().u8(0x20).u8(1).u8(0x0d).u8(0xb8).zero(11).u8(2);
  EXPECT_EQ(text(ByteVector(144)), "any");
  EXPECT_EQ(text(ipv4("10.0.0.1", true)), "not ip 10.0.0.1");
  EXPECT_EQ(text(address(2).bytes(six).to(144)), "ip 2001:db8::1");
  EXPECT_EQ(text(address(3).u32(0x0100000a).u32(0x0900000a).to(144)), "ip 10.0.0.1-10.0.0.9");
  EXPECT_EQ(text(address(4).bytes(six).bytes(sixNext).to(144)), "ip 2001:db8::1-2001:db8::2");
  EXPECT_EQ(text(ipv4Block("10.0.0.0", 8)), "ip 10.0.0.0/8");
  EXPECT_EQ(text(address(6).u8(0x20).u8(1).zero(14).u8(16).to(144)), "ip 2001::/16");
  EXPECT_EQ(text(address(7).u32(0x33221100).u16(0x5544).to(144)), "mac 00:11:22:33:44:55");
  EXPECT_EQ(text(address(8).u32(1).u16(0).u32(2).u16(0).to(144)),
            "mac 01:00:00:00:00:00-02:00:00:00:00:00");
  EXPECT_EQ(text(address(9).u32(1).u16(0).u32(0xff).u16(0).to(144)),
            "mac 01:00:00:00:00:00/ff:00:00:00:00:00");
  EXPECT_EQ(text(address(11).text("set", 38).to(144)), "addrset set");
  EXPECT_EQ(text(address(12).zero(12).u64(33).to(144)), "int attr 33");
  EXPECT_EQ(text(address(13).zero(12).u64(34).to(144)), "unsigned int attr 34");
  EXPECT_EQ(text(address(14).zero(10).text("host", 130)), "str attr host");
  EXPECT_EQ(text(address(15).to(144)), "sid attr ");
}

TEST(LabChain, WritesEveryKindOfElement) {
  const ByteVector value = Record().u16(10).u16(1).u32(18).u16(0).u64(77);
  const ByteVector name = Record()
                              .u16(7)
                              .u16(3)
                              .u32(28 + 12)
                              .u16(0)
                              .u64(0x0706050403020100)
                              .u64(0)
                              .u16(12)
                              .text("example.com", 12);
  const ByteVector bare = Record().u16(5).u16(3).u32(28).u16(0).zero(16).u16(0);
  const ByteVector sid =
      Record().u16(8).u16(4).u32(82).u16(0).u32(0).u8(1).u8(2).zero(5).u8(5).u32(21).u32(500).to(
          82);
  Record chain;
  chain.u32(2).u32(4).u32(4 * 8 + 18 + 40 + 28 + 82);
  for (const ByteVector& element : {value, name, bare, sid}) {
    chain.u16(1).u16(0).u32(element.size()).bytes(element);
  }
  EXPECT_EQ(Chain::fault(chain), "");
  EXPECT_EQ(Chain::texts(chain),
            (std::vector<std::string>{
                "PROCESS_HASH : 77", "FQDN : example.com(00010203-0405-0607-0000-000000000000)",
                "HTTP_PATH : 00000000-0000-0000-0000-000000000000", "WIN_SID : S-1-5-21-500"}));
  EXPECT_TRUE(Chain::texts(Record().bytes(chain).set(20, 200)).empty()) << "a key that is none";
  EXPECT_TRUE(Chain::texts(Record().u32(2).u32(4)).empty()) << "no whole head";
  const ByteVector whole = chain;
  for (std::size_t size = 0; size < whole.size(); ++size) {
    EXPECT_NE(Chain::fault(ConstBytes(whole).first(size)), "") << size;
  }
}

}  // namespace
}  // namespace TarnLab
