#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "LabBench.h"
#include "LabDecode.h"
#include "LabJournal.h"

namespace TarnLab {
namespace {

class LabJournal : public LabBench {
 protected:
  /// The last entry's line from the device on.
  std::string line() {
    const std::string text = decodeEntry(journal().back());
    return text.substr(text.find("firewall"));
  }
};

TEST_F(LabJournal, KeepsEveryRequestWithItsBytesAndItsAnswer) {
  ByteVector body(116);
  ASSERT_EQ(direct(20, body), 0);
  ASSERT_EQ(direct(99, body), ENOTTY);
  const auto entries = journal();
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[0].request, 20u);
  EXPECT_EQ(entries[0].size, 116u);
  EXPECT_TRUE(entries[0].sent.empty()) << "zeros are not kept";
  EXPECT_EQ(get8(entries[0].answered, 100), 8u);
  EXPECT_EQ(entries[0].process, static_cast<std::uint32_t>(::getpid()));
  EXPECT_EQ(entries[1].error, ENOTTY);
}

TEST_F(LabJournal, SkipsAnEntryThatWasLeftHalfWritten) {
  ByteVector body(116);
  ASSERT_EQ(direct(20, body), 0);
  const auto whole = std::filesystem::file_size(store.path("log"));
  ASSERT_EQ(direct(20, body), 0);
  for (const std::uintmax_t cut : {1u, 50u, 95u, 96u, 100u}) {
    std::filesystem::resize_file(store.path("log"), whole + cut);
    EXPECT_EQ(journal().size(), 1u) << cut;
  }
  ASSERT_EQ(direct(21, body), EINVAL);
  const auto entries = journal();
  ASSERT_EQ(entries.size(), 2u);
  EXPECT_EQ(entries[1].request, 21u);
}

TEST_F(LabJournal, KeepsTheFirstMegabyteOfABigMessage) {
  const std::vector<ByteVector> rules(2000, ruleRecord(1));
  ASSERT_EQ(createRuleSet("big", rules), 0u);
  const JournalEntry entry = journal().back();
  EXPECT_EQ(entry.size, 32u + 168u + 2000u * 892u);
  EXPECT_LE(entry.sent.size(), JournalEntry::keptLimit);
  EXPECT_GT(entry.sent.size(), JournalEntry::keptLimit - 892);
  EXPECT_NE(line().find("CreateRuleSet(name \"big\", sequence 0, rules 2000, flags 3) = ok"),
            std::string::npos);
}

TEST_F(LabJournal, DecodesABigReplyAsFarAsItWasKept) {
  ASSERT_EQ(createRuleSet("web", {ruleRecord(1)}), 0u);
  ASSERT_EQ(command(10, Record().text("web", 64).u32(2000).u32(0).u16(1).to(96 + 896 * 2000)), 0u);
  EXPECT_NE(line().find("flags 1, kind 0) = ok {returned 1, realized "), std::string::npos)
      << line();
  EXPECT_EQ(decodeRecords(journal().back()),
            "    rule 1 at 0 inout protocol any from any to any accept;\n");
  EXPECT_NE(dumpEntry(journal().back()).find("what follows was not kept"), std::string::npos);
}

TEST_F(LabJournal, DecodesARequestToOneLine) {
  ByteVector body = Record().text("kelpco-sfw", 100).zero(16);
  ASSERT_EQ(direct(20, body), 0);
  EXPECT_EQ(line(), "firewall 20: number of filters of kelpco-sfw = ok {count 6}");
  ASSERT_EQ(direct(21, body), EINVAL);
  EXPECT_EQ(
      line(),
      "firewall 21: filters of kelpco-sfw (count 6, room 0) = EINVAL (buffer of 0 bytes for 6 "
      "filters)");
}

TEST_F(LabJournal, DecodesTheFieldsOfACommandAndItsReply) {
  const std::string head =
      std::string("firewall 15: filter ") + web + " of kelpco-sfw: message 0: ";
  EXPECT_EQ(createRuleSet("web", {ruleRecord(1)}), 0u);
  EXPECT_EQ(line(), head + "CreateRuleSet(name \"web\", sequence 0, rules 1, flags 3) = ok");
  EXPECT_EQ(command(8, Record().text("web", 72)), 0u);
  EXPECT_EQ(line(), head + "GetRuleCountOfRuleSet(name \"web\", kind 0) = ok {rules 1}");
  EXPECT_EQ(command(8, Record().text("none", 72)), 28u);
  EXPECT_EQ(line(), head +
                        "GetRuleCountOfRuleSet(name \"none\", kind 0) = status 28 "
                        "(there is no rule set none)");
}

TEST_F(LabJournal, ShowsTheRecordsOfAMessage) {
  EXPECT_EQ(createRuleSet("web", {ruleRecord(7), ruleRecord(8, 2)}), 0u);
  EXPECT_EQ(decodeRecords(journal().back()),
            "    rule 7 at 0 inout protocol any from any to any accept;\n"
            "    rule 8 at 0 inout protocol any from any to any drop;\n");
  EXPECT_EQ(createAddrSet("clients", {ipv4("10.0.0.1"), ipv4Block("10.1.0.0", 16)}), 0u);
  EXPECT_EQ(decodeRecords(journal().back()), "    ip 10.0.0.1\n    ip 10.1.0.0/16\n");
  EXPECT_EQ(command(21, Record().u32(0).u32(2).u32(0).zero(4 + 2 * 38)), 0u);
  EXPECT_EQ(decodeRecords(journal().back()), "    clients\n");
}

TEST_F(LabJournal, DumpsTheBytes) {
  ByteVector sent = message(1, ByteVector(4));
  ASSERT_EQ(send(sent, ByteVector(100)), 0);
  EXPECT_EQ(dumpEntry(journal().back()),
            "    sent, 36 bytes\n"
            "    000000  54 41 52 4e 10 00 00 00 00 00 00 00 01 01 00 01\n"
            "    000010  01 00 00 00 04 00 00 00 01 00 ff ff\n"
            "    zeros to the end\n"
            "    answered, 36 bytes\n"
            "    000000  54 41 52 4e 10 00 00 00 00 00 00 00 01 01 01 01\n"
            "    000010  01 00 00 00 04 00 00 00 01 00 ff ff 15\n"
            "    zeros to the end\n");
}

TEST_F(LabJournal, DecodesHostileEntriesWithoutReadingOutside) {
  ByteVector sent = message(10, ByteVector(96));
  for (std::size_t size = 0; size <= sent.size(); ++size) {
    JournalEntry entry;
    entry.device = Device::firewall;
    entry.request = 15;
    entry.sent.assign(sent.begin(), sent.begin() + static_cast<std::ptrdiff_t>(size));
    entry.answered = entry.sent;
    entry.size = size;
    EXPECT_FALSE(decodeEntry(entry).empty());
    decodeRecords(entry);
  }
  for (std::size_t offset = 0; offset < sent.size(); ++offset) {
    JournalEntry entry;
    entry.device = Device::firewall;
    entry.request = 15;
    entry.sent = sent;
    entry.sent[offset] = std::byte{0xff};
    entry.answered = entry.sent;
    entry.size = sent.size();
    EXPECT_FALSE(decodeEntry(entry).empty());
    decodeRecords(entry);
  }
}

}  // namespace
}  // namespace TarnLab
