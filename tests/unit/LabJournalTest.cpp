#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "LabBench.h"
#include "LabDecode.h"
#include "LabJournal.h"
#include "Sanitizers.h"

namespace TarnLab {
namespace {

class LabJournal : public LabBench {
 protected:
  /// The last entry's line from the device on.
  std::string line() {
    const std::string text = decodeEntry(journal().back());
    return text.substr(text.find("firewall"));
  }

  /// An entry of one command that was answered with status 0.
  static JournalEntry answeredEntry(unsigned number, const ByteVector& sent,
                                    const ByteVector& answered) {
    JournalEntry entry;
    entry.device = Device::firewall;
    entry.request = 15;
    entry.sent = message(number, sent);
    entry.answered = message(number, answered);
    entry.size = entry.sent.size();
    return entry;
  }

  /// The line about such a command, after its head.
  static std::string decodedLine(unsigned number, const ByteVector& sent,
                                 const ByteVector& answered) {
    const std::string text = decodeRequest(answeredEntry(number, sent, answered));
    const std::string head = "firewall 15: message 0: ";
    EXPECT_EQ(text.substr(0, head.size()), head);
    return text.substr(head.size());
  }

  /// The lines about the records of a reply.
  static std::string decodedRecords(unsigned number, const ByteVector& answered) {
    return decodeRecords(answeredEntry(number, ByteVector(answered.size()), answered));
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

TEST_F(LabJournal, AFileThatBecomesTheOlderOneMeanwhileIsReadAllTheSame) {
  ByteVector body(116);
  ASSERT_EQ(direct(20, body), 0);
  std::filesystem::rename(store.path("log"), store.path("log.old"));
  ASSERT_EQ(direct(21, body), EINVAL);
  std::vector<std::uint32_t> requests;
  Journal(store).read([&](const JournalEntry& entry) {
    if (requests.empty()) {
      std::filesystem::rename(store.path("log"), store.path("log.old"));
      EXPECT_EQ(direct(99, body), ENOTTY);
    }
    requests.push_back(entry.request);
    return true;
  });
  EXPECT_EQ(requests, (std::vector<std::uint32_t>{20, 21}));
}

TEST_F(LabJournal, AFileThatBecameTheOlderOneBetweenTheTwoIsReadOnce) {
  ByteVector body(116);
  ASSERT_EQ(direct(20, body), 0);
  std::filesystem::create_hard_link(store.path("log"), store.path("log.old"));
  EXPECT_EQ(journal().size(), 1u);
}

TEST_F(LabJournal, SkipsAnEntryThatWasLeftHalfWritten) {
  ByteVector body = Record().text("kelpco-sfw", 100).u32(6).zero(12);
  ASSERT_EQ(direct(20, body), 0);
  const auto whole = std::filesystem::file_size(store.path("log"));
  for (std::uintmax_t cut = 1; cut < whole; ++cut) {
    Journal(store).clear();
    ASSERT_EQ(direct(20, body), 0);
    ASSERT_EQ(direct(20, body), 0);
    std::filesystem::resize_file(store.path("log"), whole + cut);
    EXPECT_EQ(journal().size(), 1u) << cut;
    ASSERT_EQ(direct(21, body), EINVAL);
    ASSERT_EQ(direct(99, body), ENOTTY);
    const auto entries = journal();
    ASSERT_EQ(entries.size(), 3u) << cut;
    EXPECT_EQ(entries[1].request, 21u) << cut;
    EXPECT_EQ(entries[2].request, 99u) << cut;
  }
}

TEST_F(LabJournal, AnEntryEndsWithAByteThatNoneBeginsWith) {
  ByteVector body = Record().text("kelpco-sfw", 100).u32(6).zero(12);
  for (int turn = 0; turn < 300; ++turn) {
    ASSERT_EQ(direct(20, body), 0);
    std::ifstream log(store.path("log"), std::ios::binary);
    log.seekg(-1, std::ios::end);
    ASSERT_EQ(log.get(), 0) << "an entry that lacks this byte is not completed by the next one";
  }
}

TEST_F(LabJournal, ShowsWhatFollowsABigEntryThatWasLeftHalfWritten) {
  ASSERT_EQ(createRuleSet("big", std::vector<ByteVector>(1000, ruleRecord(1))), 0u);
  std::filesystem::resize_file(store.path("log"), 300000);
  ByteVector body(116);
  ASSERT_EQ(direct(20, body), 0);
  const auto entries = journal();
  ASSERT_EQ(entries.size(), 1u);
  EXPECT_EQ(entries[0].request, 20u);
}

TEST_F(LabJournal, ReadsPastMuchThatIsNoEntry) {
  ByteVector body(116);
  ASSERT_EQ(direct(20, body), 0);
  const auto whole = std::filesystem::file_size(store.path("log"));
  std::filesystem::resize_file(store.path("log"), whole + (std::uintmax_t{64} << 20));
  ASSERT_EQ(direct(20, body), 0);
  const auto before = std::chrono::steady_clock::now();
  EXPECT_EQ(journal().size(), 2u);
  EXPECT_LT(std::chrono::steady_clock::now() - before,
            std::chrono::seconds(kThreadSanitizer ? 60 : 5));
}

TEST_F(LabJournal, AnEntryForWhichThereIsNoRoomIsAnErrorAndLeavesNothing) {
  ByteVector body(116);
  ASSERT_EQ(direct(20, body), 0);
  const auto whole = std::filesystem::file_size(store.path("log"));
  ::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{};
  ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
  rlimit tight = limit;
  tight.rlim_cur = whole + 120;
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &tight), 0);
  EXPECT_EQ(direct(20, body), EIO);
  ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
  ::signal(SIGXFSZ, SIG_DFL);
  EXPECT_EQ(std::filesystem::file_size(store.path("log")), whole);
  EXPECT_EQ(journal().size(), 1u);
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

TEST_F(LabJournal, ADirectRequestShowsTheStatusOfItsFrameOrWhatTheCallReturned) {
  ByteVector body(116);
  ASSERT_EQ(direct(20, body), 0);
  JournalEntry entry = journal().back();
  entry.status = 9;
  EXPECT_EQ(decodeRequest(entry), "firewall 20: number of filters of every agent = status 9");
  entry.status = 0;
  entry.result = 3;
  Journal(store).append(entry);
  EXPECT_EQ(line(), "firewall 20: number of filters of every agent = result 3");
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

TEST_F(LabJournal, AMessageThatWasNotAnsweredHasNoAnswer) {
  ByteVector sent = message(1, ByteVector(4));
  ASSERT_EQ(send(sent, filterSelector("none")), ENOENT);
  EXPECT_EQ(line(),
            "firewall 15: filter none of kelpco-sfw: message 0: GetRuleSetCount() = ENOENT "
            "(there is no filter none of kelpco-sfw)");
  put32(sent, 20, 5);
  ASSERT_EQ(send(sent, filterSelector(web)), EINVAL);
  EXPECT_EQ(line().find("= ok"), std::string::npos) << line();
  EXPECT_EQ(decodeRecords(journal().back()), "");
}

TEST_F(LabJournal, DecodesEveryCommandOfRuleSetsFieldByField) {
  const ByteVector named = Record().text("web", 64).to(84);
  const ByteVector selection = Record().text("web", 64).u32(2).u32(7).u16(1).u8(2).u8(0).to(4000);
  const std::string asked = "(name \"web\", max 2, from 7, flags 1, kind 2)";
  const auto answered = [](ByteVector bytes, std::size_t offset, const ByteVector& more) {
    std::copy(more.begin(), more.end(), bytes.begin() + static_cast<std::ptrdiff_t>(offset));
    return bytes;
  };
  struct Row {
    unsigned number;
    ByteVector sent;
    ByteVector answered;
    std::string line;
  };
  const ByteVector four(4);
  const std::vector<Row> rows = {
      {1, four, Record().u32(5), "GetRuleSetCount() = ok {count 5}"},
      {2, Record().u32(3).u32(4).to(204), Record().u32(3).u32(4).u32(1).text("web", 64).to(204),
       "GetRuleSetList(max 3, from 4) = ok {returned 1, first \"web\"}"},
      {3, Record().to(64).text("web", 64).u64(9).u32(0).u8(3).to(168),
       Record().to(140).u8(0).to(144).u64(1).u64(0x0203).to(168),
       "CreateRuleSet(name \"web\", sequence 9, rules 0, flags 3) = ok {transaction "
       "00000000000000010000000000000203}"},
      {4, ByteVector(132), Record().text("l3", 64).text("l2", 64).to(132),
       "GetRootRuleSet() = ok {layer3 \"l3\", layer2 \"l2\"}"},
      {6, named, named, "ClearRuleSet(name \"web\") = ok"},
      {7, named, named, "DestroyRuleSet(name \"web\") = ok"},
      {8, Record().text("web", 64).u8(2).to(72), Record().to(68).u32(12),
       "GetRuleCountOfRuleSet(name \"web\", kind 2) = ok {rules 12}"},
      {9, named, Record().to(64).u32(3).u64(60).u64(8),
       "GetRuleSetInfo(name \"web\") = ok {rules 3, realized 60, generation 8}"},
      {10, selection, answered(selection, 76, Record().u32(1).u64(60).u64(8)),
       "GetRuleOfRuleSet" + asked + " = ok {returned 1, realized 60, generation 8}"},
      {11, selection, answered(selection, 76, Record().u32(1)),
       "GetStatOfRuleSet" + asked + " = ok {returned 1}"},
      {12, selection, answered(selection, 76, Record().u32(1)),
       "GetDlbOfRuleSet" + asked + " = ok {returned 1}"},
      {36, four, four, "ClearRootRuleSet() = ok"},
      {60, four, four, "DestroyAllRuleSet() = ok"},
      {61, Record().text("web", 64).text("next", 64), ByteVector(128),
       "SetRuleSetJump(name \"web\", target \"next\") = ok"},
      {62, Record().text("web", 128), Record().to(64).text("next", 64),
       "GetRuleSetJump(name \"web\") = ok {target \"next\"}"},
      {63, Record().text("web", 64), ByteVector(64), "ClearRuleSetJump(name \"web\") = ok"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(decodedLine(row.number, row.sent, row.answered), row.line);
  }
}

TEST_F(LabJournal, DecodesEveryCommandOfAddressSetsFieldByField) {
  const auto named = [](std::size_t size) -> ByteVector {
    return Record().text("web", 38).to(size);
  };
  const ByteVector page = Record().text("web", 38).u32(1).u32(2).u32(7).to(500);
  const std::string asked = "(name \"web\", type 1, max 2, from 7";
  const ByteVector list = Record().u8(4).to(4).u32(2).u32(7).to(500);
  const ByteVector creation =
      Record().text("web", 38).u64(9).u32(1).u32(2).u32(144).u8(0x0b).to(86);
  const std::string created = "(name \"web\", sequence 9, entries 1, type 2, bytes 144, flags 11)";
  struct Row {
    unsigned number;
    ByteVector sent;
    ByteVector answered;
    std::string line;
  };
  const ByteVector four(4);
  const std::vector<Row> rows = {
      {13, creation, Record().to(62).u64(1).u64(2).to(86),
       "CreateAddrSet" + created + " = ok {transaction 00000000000000010000000000000002}"},
      {14, named(42), named(42), "DestroyAddrSet(name \"web\") = ok"},
      {15, named(50), Record().to(38).u32(3).u32(1).u32(432),
       "GetAddrSetTypeAndSize(name \"web\") = ok {entries 3, type 1, bytes 432}"},
      {16, named(58), Record().to(38).u32(3).u64(60).u64(8),
       "GetAddrSetInfo(name \"web\") = ok {entries 3, realized 60, generation 8}"},
      {17, page, Record().to(50).u32(1).u64(60).u64(8).to(500),
       "GetAddressOfAddrSet" + asked + ") = ok {returned 1, realized 60, generation 8}"},
      {18, page, Record().to(50).u32(1).to(500),
       "GetAddrValidOfAddrSet" + asked + ") = ok {returned 1}"},
      {19, Record().text("web", 38).u32(1).u32(2).u32(7).u32(1).to(500),
       Record().to(54).u32(1).to(500),
       "GetAddressStatOfAddrSet" + asked + ", clear 1) = ok {returned 1}"},
      {20, Record().u8(4).to(8), Record().to(4).u32(6), "GetAddrSetCount(type 4) = ok {count 6}"},
      {21, list, Record().to(12).u32(1).text("web", 38).to(500),
       "GetAddrSetList(type 4, max 2, from 7) = ok {returned 1, first \"web\"}"},
      {22, list, Record().to(12).u32(1).to(500),
       "GetAddrSetStatList(type 4, max 2, from 7) = ok {returned 1}"},
      {44, Record().u8(1).to(4), four, "ConfigSharedAddrSet(enable 1) = ok"},
      {45, four, Record().u8(1).to(4), "GetSharedAddrSet() = ok {enabled 1}"},
      {46, Record().u32(5).text("web", 38).u32(1).u32(0x0400000a).to(186).u32(3).u32(4),
       Record().to(186).u32(1).u32(2),
       "SetAddrSetCfg(operation 5, name \"web\", component 1, address "
       "0a000004000000000000000000000000, first 3, second 4) = ok {old 1, new 2}"},
      {56, Record().text("web", 42).u32(3).to(110), ByteVector(110),
       "GetElementsOfContainer(name \"web\", count 3) = ok"},
      {64, named(46), named(46), "ClearAddrSet(name \"web\") = ok"},
      {65, four, four, "DestroyAllAddrSet() = ok"},
      {75, creation, ByteVector(86), "CreateContainer" + created + " = ok"},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(decodedLine(row.number, row.sent, row.answered), row.line);
  }
}

TEST_F(LabJournal, ShowsTheCountersOfAReply) {
  Record stats = Record().to(64);
  stats.u32(1).to(76).u32(1).to(84).u32(7).u32(0);
  for (unsigned i = 1; i <= 7; ++i) stats.u64(i);
  EXPECT_EQ(decodedRecords(11, stats),
            "    rule 7: evals 1, hits 2, sessions 3, packets in 4 out 5, bytes in 6 out 7\n");
  EXPECT_EQ(decodedRecords(12, Record().to(76).u32(2).u32(5).u32(9)), "    rule 5\n    rule 9\n");
  EXPECT_EQ(decodedRecords(18, Record().to(50).u32(1).bytes(ipv4("10.0.0.1")).u8(5)),
            "    ip 10.0.0.1 mark 5\n");
  Record entry = Record().to(54);
  entry.u32(1);
  for (unsigned i = 1; i <= 8; ++i) entry.u64(i);
  entry.u32(9).u32(10).u64(11);
  EXPECT_EQ(decodedRecords(19, entry),
            "    packets 1 2 3 4, bytes 5 6 7 8, connections 9, at most 10, uptime 11\n");
  Record set = Record().to(12);
  set.u32(1).text("web", 38);
  for (unsigned i = 1; i <= 11; ++i) set.u64(i);
  set.u32(12);
  EXPECT_EQ(decodedRecords(22, set),
            "    web: packets 1 2 3 4, bytes 5 6 7 8, match 9, no match 10, uptime 11, "
            "references 12\n");
}

TEST_F(LabJournal, CutsCountersThatAReplyDoesNotHold) {
  const std::pair<unsigned, std::size_t> counts[] = {
      {11, 76}, {12, 76}, {18, 50}, {19, 54}, {22, 12}};
  for (const auto& [number, offset] : counts) {
    ByteVector lie(300);
    put32(lie, offset, 0xffffffff);
    EXPECT_NE(decodedRecords(number, lie).find("    ? and 42949672"), std::string::npos) << number;
    lie.resize(offset + 2);
    EXPECT_EQ(decodedRecords(number, lie), "    ? cut off\n") << number;
  }
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
