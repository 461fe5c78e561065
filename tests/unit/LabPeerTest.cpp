// The host daemon and the inspection process, over a pair of sockets: what they answer, keep and
// write, and what they do wrong when that is ordered.
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <fstream>
#include <sstream>
#include <thread>

#include "LabBench.h"
#include "LabDecode.h"
#include "LabFaults.h"
#include "LabHostFiles.h"
#include "LabPeer.h"
#include "LabSettings.h"

namespace TarnLab {
namespace {

ByteVector bytesOf(const std::string& text) {
  const auto bytes = std::as_bytes(std::span(text));
  return {bytes.begin(), bytes.end()};
}

std::string textOf(const ByteVector& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// A message of the trace socket, cleared but for its head.
Record traceMessage(char letter) {
  return Record().u8('t').u8('c').u8(static_cast<unsigned char>(letter)).u8(10).to(260);
}

Record levelMessage(char letter, char digit, unsigned component = 0) {
  return traceMessage(letter).set(4, static_cast<unsigned char>(digit)).set(5, component);
}

Record secondsMessage(char letter, unsigned seconds) {
  return traceMessage(letter).set(4, seconds);
}

ByteVector fileMessage(char letter, const std::string& path) {
  ByteVector message = traceMessage(letter);
  for (std::size_t i = 0; i < path.size(); ++i) message[4 + i] = static_cast<std::byte>(path[i]);
  return message;
}

Record inspectionCommand(std::uint32_t number) { return Record().u32(4).u32(number); }

ByteVector nameQuery(const std::string& name) {
  return Record().u32(4).u32(71).u32(name.size() + 1).bytes(bytesOf(name)).u8(0);
}

template <typename Bench>
class PeerBench : public Bench {
 protected:
  /// Everything that the peer sends for a request, up to the end of the stream or so many bytes.
  std::string ask(Device peer, const ByteVector& request, std::size_t most = ~std::size_t{0}) {
    int ends[2];
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
    PeerManner manner;
    EXPECT_EQ(Peer::admit(this->store, peer, manner), 0);
    std::thread served([&] {
      Peer::serve(this->store, peer, manner, ends[1]);
      ::shutdown(ends[1], SHUT_RDWR);
    });
    EXPECT_EQ(::send(ends[0], request.data(), request.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(request.size()));
    ::shutdown(ends[0], SHUT_WR);
    std::string answer;
    char piece[4096];
    while (answer.size() < most) {
      const ssize_t got = ::recv(ends[0], piece, std::min(sizeof piece, most - answer.size()), 0);
      if (got <= 0) break;
      ++pieces;
      answer.append(piece, static_cast<std::size_t>(got));
    }
    ::close(ends[0]);
    served.join();
    ::close(ends[1]);
    return answer;
  }

  std::string trace(const ByteVector& message) { return ask(Device::trace, message); }

  /// The text of an answer of the inspection process, whose length and NUL are checked.
  std::string inspect(const ByteVector& request) {
    const ByteVector answer = bytesOf(ask(Device::inspection, request));
    EXPECT_GE(answer.size(), 5u);
    if (answer.size() < 5) return "";
    EXPECT_EQ(get32(answer, 0), answer.size() - 4);
    EXPECT_EQ(answer.back(), std::byte{0});
    return textOf(answer).substr(4, answer.size() - 5);
  }

  void order(PeerFault fault, std::uint32_t value = 0, Device peer = Device::none,
             std::optional<std::uint32_t> relation = std::nullopt, std::uint32_t count = 0) {
    const StoreLock lock(this->store);
    Faults faults = Faults::load(this->store);
    faults.add({Fault::Kind::peer, value, count, relation, peer, fault});
    faults.save(this->store);
  }

  std::string logLine() {
    const auto entries = this->journal();
    return entries.empty() ? "" : decodeRequest(entries.back());
  }

  std::string fileOf(const std::string& path) {
    std::ifstream file(this->store.path(HostFiles::fileOf(path)), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  int pieces = 0;  // in which answers came
};

class LabPeer : public PeerBench<LabBench> {};
class LabFilledPeer : public PeerBench<FilledLabBench> {};

constexpr const char* statusOfNew =
    "tracing: off\n"
    "process log level: 3\n"
    "library log level: 2\n"
    "L2 rule optimization: on\n"
    "L3 rule optimization: on\n"
    "shared addrset: off\n"
    "clean protobuf: off\n"
    "addrset aggregation timeout: 5 seconds\n"
    "addrset aggregation interval: 10 seconds\n"
    "filters: 8, agents: 3\n";

TEST_F(LabPeer, AStatusShowsWhatTheDaemonIsSetTo) {
  EXPECT_EQ(trace(traceMessage('A')), statusOfNew);
  EXPECT_EQ(logLine(), "trace A: tracing status() = ok {bytes 247}");
}

TEST_F(LabPeer, WhatACommandSetsTheStatusShows) {
  EXPECT_EQ(trace(levelMessage('C', '7')), "process log level of all components is 7\n");
  EXPECT_EQ(logLine(), "trace C: set process log level(level \"7\", component 0) = ok {bytes 41}");
  EXPECT_EQ(trace(levelMessage('D', '9', 4)), "library log level of parser is 9\n");
  EXPECT_EQ(trace(levelMessage('D', '0', 18)), "library log level of cache is 0\n");
  EXPECT_EQ(trace(traceMessage('P')), "L2 rule optimization is off\n");
  EXPECT_EQ(trace(traceMessage('Q')), "L3 rule optimization is off\n");
  EXPECT_EQ(trace(traceMessage('T').set(4, 1)), "shared addrset is on\n");
  EXPECT_EQ(trace(traceMessage('[')), "clean protobuf is on\n");
  EXPECT_EQ(trace(secondsMessage('\\', 30)), "addrset aggregation timeout is 30 seconds\n");
  EXPECT_EQ(trace(secondsMessage('a', 2)), "addrset aggregation interval is 2 seconds\n");
  EXPECT_EQ(trace(traceMessage('A')),
            "tracing: off\n"
            "process log level: 7\n"
            "library log level: 2, parser 9, cache 0\n"
            "L2 rule optimization: off\n"
            "L3 rule optimization: off\n"
            "shared addrset: on\n"
            "clean protobuf: on\n"
            "addrset aggregation timeout: 30 seconds\n"
            "addrset aggregation interval: 2 seconds\n"
            "filters: 8, agents: 3\n");
}

TEST_F(LabPeer, ALevelOfAllComponentsTakesThePlaceOfSingleOnes) {
  trace(levelMessage('D', '9', 4));
  EXPECT_EQ(trace(levelMessage('D', '1', 255)), "library log level of all components is 1\n");
  EXPECT_NE(trace(traceMessage('A')).find("\nlibrary log level: 1\n"), std::string::npos);
}

TEST_F(LabPeer, CleaningIsTurnedOverEachTimeAndOnByOrder) {
  EXPECT_EQ(trace(traceMessage('[')), "clean protobuf is on\n");
  EXPECT_EQ(trace(traceMessage('[')), "clean protobuf is off\n");
  EXPECT_EQ(trace(traceMessage('[').set(4, 1)), "clean protobuf is on\n");
  EXPECT_EQ(trace(traceMessage('[').set(4, 1)), "clean protobuf is on\n");
}

TEST_F(LabPeer, TheMarkerFileTurnsTracingOnAndStoppingTakesItAway) {
  EXPECT_EQ(trace(traceMessage('B')), "tracing was not on\n");
  {
    const StoreLock lock(store);
    HostFiles::make(store);
    store.replace("root/etc/kelpco/hulld/enable_trace", {});
  }
  EXPECT_EQ(trace(traceMessage('A')).substr(0, 12), "tracing: on\n");
  EXPECT_EQ(trace(traceMessage('B')), "tracing is stopped\n");
  EXPECT_FALSE(store.exists("root/etc/kelpco/hulld/enable_trace"));
  EXPECT_EQ(trace(traceMessage('A')).substr(0, 13), "tracing: off\n");
}

TEST_F(LabPeer, ThresholdsAreThoseOfTheDevice) {
  EXPECT_EQ(trace(traceMessage('M').set(8, 91)), "threshold of CPU is 91 percent\n");
  EXPECT_EQ(trace(traceMessage('M').set(4, 1).set(8, 92)), "threshold of memory is 92 percent\n");
  EXPECT_EQ(trace(traceMessage('M').set(4, 2).set(9, 1)),
            "threshold of connections is 256 per second\n");
  EXPECT_EQ(trace(traceMessage('N')),
            "threshold of CPU: 91 percent\n"
            "threshold of memory: 92 percent\n"
            "threshold of connections: 256 per second\n");
  ByteVector body(8);
  EXPECT_EQ(direct(29, body), 0);
  EXPECT_EQ(get8(body, 1), 91u);
  EXPECT_EQ(get32(body, 4), 256u);
}

TEST_F(LabPeer, WhatTheDaemonRefusesChangesNothingAndIsNoted) {
  const struct {
    ByteVector message;
    std::string why;
  } refused[] = {
      {traceMessage('C'), "log level is missing"},
      {levelMessage('D', ':'), "log level is missing"},
      {levelMessage('D', '1', 19), "there is no component 19"},
      {secondsMessage('a', 31), "31 seconds"},
      {secondsMessage('\\', 255), "255 seconds"},
      {traceMessage('M').set(8, 101), "101 percent of CPU"},
      {traceMessage('M').set(4, 3), "there is no threshold 3"},
      {traceMessage('@'), "there is no command 64"},
      {traceMessage('b'), "there is no command 98"},
      {traceMessage('\0'), "there is no command 0"},
      {traceMessage('A').set(0, 'T'), "no trace message"},
      {traceMessage('A').set(1, 'd'), "no trace message"},
      {traceMessage('A').set(3, 9), "no trace message"},
      {ByteVector(260, std::byte{0xff}), "no trace message"},
  };
  for (const auto& each : refused) {
    EXPECT_EQ(trace(each.message), "ERROR: " + each.why + "\n");
    EXPECT_EQ(note(), each.why);
    EXPECT_EQ(journal().back().error, EINVAL);
  }
  EXPECT_EQ(trace(traceMessage('A')), statusOfNew);
}

TEST_F(LabFilledPeer, EveryCommandOfTheDaemonAnswersAndIsLogged) {
  for (char letter = 'A'; letter <= 'a'; ++letter) {
    const bool takesLevel = letter == 'C' || letter == 'D';
    const std::string answer =
        trace(takesLevel ? ByteVector(levelMessage(letter, '5')) : traceMessage(letter));
    EXPECT_FALSE(answer.empty()) << letter;
    EXPECT_EQ(answer.back(), '\n') << letter;
    EXPECT_EQ(answer.find("ERROR"), std::string::npos) << answer;
    EXPECT_EQ(journal().back().error, 0) << letter;
    EXPECT_EQ(journal().back().request, static_cast<unsigned char>(letter));
    EXPECT_EQ(logLine().substr(0, 9), std::string("trace ") + letter + ": ");
  }
}

TEST_F(LabFilledPeer, DumpsShowWhatTheHostHolds) {
  ASSERT_EQ(createRuleSet("web", {ruleRecord(7), ruleRecord(8)}), 0u);
  const std::string rules = trace(traceMessage('F'));
  EXPECT_NE(rules.find("filter nic-1002672-eth0-kelpco-sfw.2\nruleset web {\n  rule 7 at 0 "),
            std::string::npos)
      << rules;
  EXPECT_NE(rules.find("filter nic-1002731-eth0-kelpco-sfw.2\n  no rule sets\n"),
            std::string::npos);
  EXPECT_NE(trace(traceMessage('H'))
                .find("filter nic-998214-eth0-kelpco-spoof.guard.1\n"
                      "  00:50:56:99:1e:37, on\n"
                      "    ip 10.20.9.14\n"),
            std::string::npos)
      << trace(traceMessage('H'));
  EXPECT_NE(trace(traceMessage('J')).find("  ruleset web: 2 rules, 0 snat, 0 dnat"),
            std::string::npos);
  EXPECT_NE(trace(traceMessage('L')).find("  flows: 244 active, 97 inactive"), std::string::npos);
  EXPECT_NE(trace(traceMessage('W')).find("  web-inspection name "), std::string::npos);
  EXPECT_NE(trace(traceMessage('V')).find("  web-profile instance \"web-inspection\""),
            std::string::npos);
  EXPECT_NE(trace(traceMessage('Z')).find("  dfw.udp.single: 35\n"), std::string::npos);
  EXPECT_NE(trace(traceMessage('S')).find("  threshold.memory: 75\n"), std::string::npos);
  EXPECT_NE(trace(traceMessage('`')).find("rule loader: idle, 1 rule sets\n"), std::string::npos);
  EXPECT_NE(trace(traceMessage('_')).find("machine 1002672, eth0 on production: 0 containers\n"),
            std::string::npos);
}

TEST_F(LabFilledPeer, RecordsAreSavedAsTheKernelHasThem) {
  ASSERT_EQ(createRuleSet("web", {ruleRecord(7), ruleRecord(8)}), 0u);
  EXPECT_EQ(trace(traceMessage('E')), "saved 1784 bytes to /var/run/kelpco/rules.bin\n");
  EXPECT_EQ(fileOf("/var/run/kelpco/rules.bin").substr(0, 4), std::string("\x07\0\0\0", 4));
  EXPECT_EQ(trace(fileMessage('I', "/tmp/all/filters")), "saved 6928 bytes to /tmp/all/filters\n");
  EXPECT_EQ(fileOf("/tmp/all/filters").substr(0, 30), std::string(web) + '\0');
  EXPECT_EQ(trace(fileMessage('G', "guards")), "saved 960 bytes to guards\n");
  EXPECT_EQ(fileOf("/guards").size(), 960u) << "8 heads of 12 bytes, and 6 addresses of 144";
}

TEST_F(LabPeer, TheLastMessageOfTheManagerIsSaved) {
  EXPECT_EQ(trace(traceMessage('O')), "saved 0 bytes to /var/run/kelpco/message.bin\n");
  const ByteVector sent = message(1, ByteVector(4));
  EXPECT_EQ(command(1, ByteVector(4)), 0u);
  EXPECT_EQ(trace(traceMessage('O').set(4, 1)),
            "saved " + std::to_string(sent.size()) + " bytes to /var/run/kelpco/message.bin\n");
  EXPECT_EQ(fileOf("/var/run/kelpco/message.bin"), textOf(sent));
}

TEST_F(LabPeer, NothingIsSavedOutsideTheLabNorOverASocket) {
  {
    const StoreLock lock(store);
    HostFiles::make(store);
  }
  for (const char* path :
       {"../escaped", "/../escaped", "/tmp/../../escaped", "/..", "/var/run/kelpco/hulld_trace"}) {
    EXPECT_EQ(trace(fileMessage('R', path)),
              "ERROR: cannot save " + std::string(path) + ": Operation not permitted\n");
  }
  EXPECT_EQ(trace(fileMessage('R', "/var")), "ERROR: cannot save /var: Is a directory\n");
  EXPECT_EQ(trace(fileMessage('R', std::string(256, 'n'))).substr(256),
            "nnnnnnnnnnnnnnnnnnn: File name too long\n");
  EXPECT_FALSE(store.exists("escaped"));
  struct stat status {};
  EXPECT_EQ(::lstat(store.path("root/var/run/kelpco/hulld_trace").c_str(), &status), 0);
  EXPECT_TRUE(S_ISSOCK(status.st_mode));
}

TEST_F(LabPeer, AMessageThatIsCutShortIsNotedAndNotAnswered) {
  for (const std::size_t size :
       {std::size_t{0}, std::size_t{1}, std::size_t{3}, std::size_t{259}}) {
    ByteVector message = traceMessage('B');
    message.resize(size);
    EXPECT_EQ(trace(message), "");
    EXPECT_EQ(journal().back().error, EPROTO);
    EXPECT_EQ(note(), "the stream ended after " + std::to_string(size) + " bytes");
  }
  EXPECT_EQ(logLine(), "trace B: stop tracing() = EPROTO (the stream ended after 259 bytes)");
}

TEST_F(LabFilledPeer, StatisticsCountWhatTheFiltersHave) {
  const std::string statistics = inspect(inspectionCommand(65));
  EXPECT_EQ(statistics.substr(0, statistics.find("  nic-1002731")),
            "filters: 8, tracing: off\n"
            "total: 3132 flows, 5 inspected, 0 with attributes, 7 names\n"
            "  nic-1002672-eth0-kelpco-sfw.2: 470 flows, 5 inspected, 0 with attributes, 7 names\n"
            "  nic-1002672-eth0-kelpco-inspect.4: 472 flows, 0 inspected, 0 with attributes, "
            "0 names\n");
  EXPECT_EQ(inspect(inspectionCommand(68)),
            "thread 0 dispatcher: waits, 8 filters\n"
            "thread 1 worker: waits, 1815 flows, 5 inspected, 0 with attributes, 7 names\n"
            "thread 2 worker: waits, 1317 flows, 0 inspected, 0 with attributes, 0 names\n"
            "thread 3 trace: off\n");
  EXPECT_EQ(logLine(), "inspection 68: thread status = ok {bytes 215}");
}

TEST_F(LabPeer, TracingOfTheInspectionIsTurnedOnAndOffWithoutAnAnswer) {
  EXPECT_EQ(ask(Device::inspection, inspectionCommand(66)), "");
  EXPECT_EQ(logLine(), "inspection 66: enable tracing = ok");
  EXPECT_NE(inspect(inspectionCommand(65)).find("tracing: on\n"), std::string::npos);
  EXPECT_EQ(ask(Device::inspection, inspectionCommand(67)), "");
  EXPECT_NE(inspect(inspectionCommand(65)).find("tracing: off\n"), std::string::npos);
}

TEST_F(LabFilledPeer, NamesAreFoundByThemselvesAndByTheirEnding) {
  const std::string first = "6f1c2b90-4d3e-4a57-8c61-000000000001 shop1.kelpco.example\n";
  EXPECT_EQ(inspect(nameQuery("shop1.kelpco.example")), first);
  EXPECT_EQ(inspect(nameQuery("SHOP1.Kelpco.example")), first);
  EXPECT_EQ(
      logLine(),
      "inspection 71: get uuids matching FQDN(name \"SHOP1.Kelpco.example\") = ok {bytes 63}");
  EXPECT_EQ(inspect(nameQuery("*.kelpco.example")).substr(0, first.size()), first);
  EXPECT_EQ(inspect(nameQuery("hop1.kelpco.example")), "no uuid matches hop1.kelpco.example\n");
  EXPECT_EQ(inspect(nameQuery("*.")), "no uuid matches *.\n");
  EXPECT_EQ(inspect(nameQuery("")), "no uuid matches \n");
}

TEST_F(LabFilledPeer, NamesAreWrittenOutAndReadIn) {
  EXPECT_EQ(ask(Device::inspection, inspectionCommand(70)), "");
  EXPECT_EQ(logLine(),
            "inspection 70: load FQDN config = EINVAL "
            "(there is no /etc/kelpco/vdpi_fqdn_config)");
  {
    const StoreLock lock(store);
    HostFiles::make(store);
    ASSERT_EQ(HostFiles::save(store, "/etc/kelpco/vdpi_fqdn_config",
                              "id-1 *.db.example\nbroken\n no\nno \n\nid-2 late.example"),
              0);
  }
  EXPECT_EQ(ask(Device::inspection, inspectionCommand(70)), "");
  EXPECT_EQ(note(), "2 names from /etc/kelpco/vdpi_fqdn_config");
  EXPECT_EQ(inspect(nameQuery("late.example")), "id-2 late.example\n");
  EXPECT_EQ(inspect(nameQuery("a.db.example")), "id-1 *.db.example\n");
  EXPECT_EQ(ask(Device::inspection, inspectionCommand(69)), "");
  EXPECT_EQ(note(), "written to /var/run/kelpco/vdpi_fqdn_config");
  const std::string written = fileOf("/var/run/kelpco/vdpi_fqdn_config");
  EXPECT_EQ(written.substr(0, 54), "6f1c2b90-4d3e-4a57-8c61-000000000001 shop1.kelpco.exam");
  EXPECT_TRUE(written.ends_with("id-1 *.db.example\nid-2 late.example\n"));
}

TEST_F(LabPeer, WhatIsNoCommandOfTheInspectionIsNotedAndNotAnswered) {
  const struct {
    ByteVector request;
    std::string why;
    int error;
  } refused[] = {
      {{}, "the stream ended after 0 bytes", EPROTO},
      {Record().u32(4).u16(65), "the stream ended after 6 bytes", EPROTO},
      {Record().u32(5).u32(65), "a command of 5 bytes", EPROTO},
      {Record().u32(0xffffffff), "a command of 4294967295 bytes", EPROTO},
      {inspectionCommand(64), "there is no command 64", EINVAL},
      {inspectionCommand(0xffffffff), "there is no command 4294967295", EINVAL},
      {inspectionCommand(71), "the stream ended after 8 bytes", EPROTO},
      {Record().u32(4).u32(71).u32(0), "a name of 0 bytes", EPROTO},
      {Record().u32(4).u32(71).u32(1025), "a name of 1025 bytes", EPROTO},
      {Record().u32(4).u32(71).u32(0xffffffff), "a name of 4294967295 bytes", EPROTO},
      {Record().u32(4).u32(71).u32(9).u32(0), "the stream ended after 16 bytes", EPROTO},
  };
  for (const auto& each : refused) {
    EXPECT_EQ(ask(Device::inspection, each.request), "");
    EXPECT_EQ(note(), each.why);
    EXPECT_EQ(journal().back().error, each.error);
    EXPECT_NE(logLine(), "");
  }
}

TEST_F(LabPeer, ANameOfTheLargestSizeIsRead) {
  const std::string name(1023, 'n');
  EXPECT_EQ(inspect(nameQuery(name)), "no uuid matches " + name + "\n");
  EXPECT_EQ(inspect(Record().u32(4).u32(71).u32(3).u8('a').u8('b').u8('c')),
            "no uuid matches abc\n")
      << "a name without a NUL";
}

TEST_F(LabPeer, AnAbsentPeerAndOneThatRefusesLetNobodyIn) {
  order(PeerFault::absent, 0, Device::trace, std::nullopt, 1);
  order(PeerFault::refuse, 0, Device::none, std::nullopt, 2);
  PeerManner manner;
  EXPECT_EQ(Peer::admit(store, Device::inspection, manner), ECONNREFUSED);
  EXPECT_EQ(Peer::admit(store, Device::trace, manner), ENOENT);
  EXPECT_EQ(Peer::admit(store, Device::trace, manner), ECONNREFUSED);
  EXPECT_EQ(Peer::admit(store, Device::trace, manner), 0);
  EXPECT_TRUE(Faults::load(store).all().empty());
}

TEST_F(LabPeer, WithoutALabThereIsNoPeer) {
  PeerManner manner;
  EXPECT_EQ(Peer::admit(Store(folder + "/nowhere"), Device::trace, manner), ENOENT);
}

TEST_F(LabPeer, APeerThatClosesAtOnceIsNoted) {
  order(PeerFault::close);
  PeerManner manner;
  EXPECT_EQ(Peer::admit(store, Device::trace, manner), 0);
  EXPECT_TRUE(manner.closes);
  EXPECT_EQ(logLine(),
            "trace: nothing = EPROTO (ordered fault: closes before it has read anything)");
}

TEST_F(LabPeer, AnAnswerIsCutWhereItWasOrdered) {
  order(PeerFault::cut, 12, Device::trace);
  order(PeerFault::cut, 3, Device::inspection);
  EXPECT_EQ(trace(traceMessage('A')), "tracing: off");
  EXPECT_EQ(ask(Device::inspection, inspectionCommand(65)).size(), 3u);
  EXPECT_EQ(logLine().substr(0, 26), "inspection 65: stats = ok ");
  EXPECT_EQ(note(), "ordered fault: closes after 3 bytes of its answer");
}

TEST_F(LabPeer, AnAnswerComesByteByByte) {
  order(PeerFault::bytes);
  pieces = 0;
  const std::string answer = trace(traceMessage('B'));
  EXPECT_EQ(answer, "tracing was not on\n");
  EXPECT_GT(pieces, 10);
}

TEST_F(LabPeer, ASlowPeerWaitsBeforeEachPiece) {
  order(PeerFault::slow, 60);
  const auto start = std::chrono::steady_clock::now();
  const std::string answer = trace(traceMessage('Z'));
  const std::size_t sent = (answer.size() + 1023) / 1024;
  EXPECT_GT(sent, 3u);
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(60 * sent));
}

TEST_F(LabPeer, AnnouncedLengthsLieAsOrdered) {
  const std::uint32_t size =
      4 + static_cast<std::uint32_t>(ask(Device::inspection, nameQuery("n")).size()) - 8;
  const struct {
    std::uint32_t value;
    std::optional<std::uint32_t> relation;
    std::uint32_t announced;
  } lies[] = {{0, std::nullopt, 0},
              {0xffffffff, std::nullopt, 0xffffffff},
              {1, PeerLength::more, size + 1},
              {2, PeerLength::less, size - 2},
              {size + 1, PeerLength::less, 0xffffffff}};
  for (const auto& lie : lies) {
    order(PeerFault::length, lie.value, Device::inspection, lie.relation, 1);
    const ByteVector answer = bytesOf(ask(Device::inspection, nameQuery("n")));
    EXPECT_EQ(get32(answer, 0), lie.announced);
    EXPECT_EQ(answer.size(), 4u + size) << "the text itself is whole";
  }
}

TEST_F(LabPeer, ATextCanLackItsNul) {
  order(PeerFault::unterminated);
  const ByteVector answer = bytesOf(ask(Device::inspection, nameQuery("n")));
  EXPECT_EQ(get32(answer, 0), answer.size() - 4);
  EXPECT_EQ(answer.back(), static_cast<std::byte>('\n'));
  EXPECT_EQ(trace(traceMessage('A')), statusOfNew) << "the daemon has none anyway";
}

TEST_F(LabPeer, AnEndlessPeerSendsUntilTheProgramGoes) {
  order(PeerFault::endless);
  const std::string text = "tracing was not on\n";
  const std::string answer = ask(Device::trace, traceMessage('B'), 100 * text.size());
  for (std::size_t i = 0; i < 100; ++i)
    EXPECT_EQ(answer.substr(i * text.size(), text.size()), text);
}

TEST_F(LabPeer, ASilentPeerStaysUntilTheProgramGoesAndIsLoggedBefore) {
  order(PeerFault::silent);
  int ends[2];
  ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
  PeerManner manner;
  ASSERT_EQ(Peer::admit(store, Device::trace, manner), 0);
  std::thread served([&] { Peer::serve(store, Device::trace, manner, ends[1]); });
  const ByteVector message = traceMessage('A');
  ASSERT_EQ(::send(ends[0], message.data(), message.size(), 0), 260);
  pollfd readable{ends[0], POLLIN, 0};
  EXPECT_EQ(::poll(&readable, 1, 50), 0);
  while (journal().empty()) std::this_thread::yield();
  EXPECT_EQ(note(), "ordered fault: says nothing and stays connected");
  ::close(ends[0]);
  served.join();
  ::close(ends[1]);
}

TEST_F(LabPeer, ADamagedLabIsAnAnswerAndNoEnd) {
  {
    const StoreLock lock(store);
    store.replace("settings", {ByteVector(3, std::byte{'x'})});
  }
  EXPECT_EQ(trace(traceMessage('A')).substr(0, 28), "ERROR: damaged file " + folder.substr(0, 8));
  EXPECT_EQ(journal().back().error, EIO);
}

TEST_F(LabPeer, AnswersStandInTheLogLineByLine) {
  trace(traceMessage('N'));
  EXPECT_EQ(decodeRecords(journal().back()),
            "    threshold of CPU: 80 percent\n"
            "    threshold of memory: 75 percent\n"
            "    threshold of connections: 5000 per second\n");
  inspect(nameQuery("n"));
  EXPECT_EQ(decodeRecords(journal().back()), "    no uuid matches n\n");
}

}  // namespace
}  // namespace TarnLab
