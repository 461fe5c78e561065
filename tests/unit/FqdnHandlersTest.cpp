// The handler of fully qualified names, against a scripted kernel.

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "DeviceShim.h"
#include "HandlerKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "tarnfw.h"

namespace {

using Body = HandlerKernel::Body;

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";

// A moment that no calendar has is printed the same on every host, whenever it was started.
constexpr std::uint64_t kNoMoment = 0x7fffffffffffffff;
const std::string kStart = "  # start_time : 1900-01-00T00:00:00\n";

struct Entry {
  Bytes address;  // 4 or 16 bytes
  int family;
  std::uint32_t ttl;
  int infinite;
  std::vector<std::string> uuids;
};

/// Keeps names and steps through them by the address and the family that it is asked with.
class FqdnKernel : public HandlerKernel {
 public:
  explicit FqdnKernel(std::vector<Entry> all) : entries(std::move(all)) {
    on(70, [this](Body& body) {
      std::uint32_t uuids = 0;
      for (const Entry& entry : entries) uuids += static_cast<std::uint32_t>(entry.uuids.size());
      body.put32(0, static_cast<std::uint32_t>(entries.size()));
      body.put32(4, uuids);
      return 0;
    });
    on(71, [this](Body& body) { return next(body); });
    on(72, [this](Body& body) { return identifiers(body); });
    on(69, [](Body& body) { return body.put32(0, 5), 0; });
  }

  std::vector<Entry> entries;
  std::vector<Bytes> keys;

 private:
  TarnFirewall::FWStatus_t next(Body& body) {
    Bytes key(145);
    std::copy_n(body.at, key.size(), key.begin());
    keys.push_back(key);
    std::size_t place = 0;
    for (std::size_t i = 0; key[144] != 0 && i < entries.size(); ++i)
      if (std::equal(entries[i].address.begin(), entries[i].address.end(), key.begin() + 4))
        place = i + 1;
    if (place >= entries.size()) return 30;
    const Entry& entry = entries[place];
    std::fill(body.at, body.at + 170, std::uint8_t{0});
    body.put(0, Bytes({static_cast<std::uint8_t>(entry.family == 2 ? 1 : 2)}));
    body.put(4, entry.address);
    body.at[144] = static_cast<std::uint8_t>(entry.family);
    body.put64(145, kNoMoment);
    body.put32(161, entry.ttl);
    body.at[165] = static_cast<std::uint8_t>(entry.infinite);
    body.put32(166, static_cast<std::uint32_t>(entry.uuids.size()));
    return 0;
  }

  TarnFirewall::FWStatus_t identifiers(Body& body) {
    for (const Entry& entry : entries) {
      if (!std::equal(entry.address.begin(), entry.address.end(), body.at + 4)) continue;
      EXPECT_EQ(body.word(1235), entry.uuids.size());
      for (std::size_t i = 0; i < entry.uuids.size(); ++i)
        body.putText(1239 * i + 145, entry.uuids[i]);
      return 0;
    }
    return 30;
  }
};

std::vector<Entry> names() {
  return {{Bytes({10, 0, 0, 1}), 2, 300, 0, {"5a43ddda", "5a43dddb"}},
          {Bytes({0x20, 1, 0x0d, 0xb8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}), 10, 1, 255, {"u"}},
          {Bytes({10, 0, 0, 2}), 2, 1, 1, {}},
          {Bytes({10, 0, 0, 3}), 2, 0xffffffff, 0, {std::string(1090, 'x')}}};
}

const std::string kListing =
    "Total fqdn entries: 4\nTotal number of uuid entries: 4\n"
    "Fqdn IP 10.0.0.1\n" +
    kStart +
    "  # ttl : 300\n     UUID -- 5a43ddda\n"
    "     UUID -- 5a43dddb\n\n"
    "Fqdn IP 2001:db8::1\n" +
    kStart +
    "  # ttl : Infinite\n     UUID -- u\n\n"
    "Fqdn IP 10.0.0.3\n" +
    kStart + "  # ttl : 4294967295\n     UUID -- " + std::string(1089, 'x') + "\n\n";

}  // namespace

TEST(GetFqdnEntries, StepsThroughTheEntriesByTheLastOne) {
  FqdnKernel kernel(names());
  EXPECT_EQ(runCommand({"getfqdnentries", "-f", kFilter}), (CommandResult{0, kListing, ""}));
  EXPECT_EQ(kernel.asked(), (std::vector<unsigned int>{70, 71, 72, 71, 72, 71, 71, 72}));
  ASSERT_EQ(kernel.keys.size(), 4u);
  EXPECT_EQ(kernel.keys[0], Bytes(145));
  EXPECT_EQ(kernel.keys[1], Bytes(145).at(4, {10, 0, 0, 1}).at(144, {2}));
  EXPECT_EQ(kernel.keys[2], Bytes(145).at(4, {0x20, 1, 0x0d, 0xb8}).at(19, {1}).at(144, {10}));
}

TEST(GetFqdnEntries, SaysWhatItDoesWhenItIsVerbose) {
  // A value of -v counts for nothing, and the level is that of no component.
  for (const char* const option : {"-v", "-v2", "-v0"}) {
    const LogCapture log;
    FqdnKernel kernel({names()[1], names()[2]});
    EXPECT_EQ(runCommand({"getfqdnentries", option, "-f", kFilter}),
              (CommandResult{0,
                             "Total fqdn entries: 2\nTotal number of uuid entries: 1\n"
                             "DEBUG: GetFqdnEntries: Getting V4 address\n"
                             "DEBUG: GetFqdnEntries: Response is here, IPv6 2001:db8::1\n"
                             "DEBUG: GetFqdnEntries: Number of uuid 1\n"
                             "DEBUG: GetFqdnEntries: uuid TO PRINT 1\n"
                             "Fqdn IP 2001:db8::1\n" +
                                 kStart +
                                 "  # ttl : Infinite\n     UUID -- u\n\n"
                                 "DEBUG: GetFqdnEntries: Getting V6 address\n"
                                 "DEBUG: GetFqdnEntries: Response is here, IPv4 10.0.0.2\n"
                                 "DEBUG: GetFqdnEntries: Number of uuid 0\n",
                             ""}))
        << option;
    EXPECT_TRUE(log.lines().empty()) << option;
  }
}

TEST(GetFqdnEntries, SaysThatThereAreNone) {
  FqdnKernel kernel({});
  EXPECT_EQ(runCommand({"getfqdnentries", "-f", kFilter}),
            (CommandResult{0, "No fqdn entry.\n", ""}));
  EXPECT_EQ(kernel.asked(), (std::vector<unsigned int>{70}));
}

TEST(GetFqdnEntries, DeletesAll) {
  FqdnKernel kernel(names());
  for (const char* const option : {"-d", "-dnow"}) {
    EXPECT_EQ(runCommand({"getfqdnentries", "-f", kFilter, option}), (CommandResult{0, "", ""}));
  }
  EXPECT_EQ(kernel.asked(), (std::vector<unsigned int>{69, 69}));
  kernel.fail(69, 21);
  EXPECT_EQ(
      runCommand({"getfqdnentries", "-f", kFilter, "-d"}),
      (CommandResult{1, "", "ERROR: failed to delete fqdn entries: switch port not found\n"}));
}

TEST(GetFqdnEntries, ReportsEveryCallThatFails) {
  const std::string totals = "Total fqdn entries: 4\nTotal number of uuid entries: 4\n";
  const struct {
    unsigned int command;
    std::string out;
    const char* err;
  } rows[] = {
      {70, "", "ERROR: failed to get fqdn total entries: switch port not found\n"},
      {71, totals, "ERROR: failed to fqdn entries: switch port not found\n"},
      {72, totals, "ERROR: failed to uuid: switch port not found\n"},
  };
  for (const auto& row : rows) {
    FqdnKernel kernel(names());
    kernel.fail(row.command, 21);
    EXPECT_EQ(runCommand({"getfqdnentries", "-f", kFilter}), (CommandResult{1, row.out, row.err}));
  }
  // Later ones too.
  FqdnKernel kernel(names());
  kernel.fail(71, 29, 2);
  EXPECT_EQ(runCommand({"getfqdnentries", "-f", kFilter}).err,
            std::string("ERROR: failed to fqdn entries: ") + FW_StatusToString(29) + "\n");
}

TEST(GetFqdnEntries, ReportsMissingMemory) {
  const std::pair<unsigned int, const char*> rows[] = {
      {70, "ERROR: GetFqdnEntries: no memory for getting fqdn records\n"},
      {71, "ERROR: GetFqdnEntries: no memory for getting uuid\n"},
  };
  for (const auto& [command, line] : rows) {
    FqdnKernel kernel(names());
    const auto answer = kernel.answerTo(command);
    kernel.on(command, [&](Body& body) {
      DeviceShim::failNextCalloc();
      return answer(body);
    });
    EXPECT_EQ(runCommand({"getfqdnentries", "-f", kFilter}),
              (CommandResult{1, "Total fqdn entries: 4\nTotal number of uuid entries: 4\n", line}));
  }
}

TEST(GetFqdnEntries, AnEntryThatIsTheOneBeforeEndsTheListing) {
  const LogCapture log;
  FqdnKernel kernel(names());
  kernel.on(70, [](Body& body) { return body.put32(0, ~0u), body.put32(4, ~0u), 0; });
  kernel.on(71, [](Body& body) {
    std::fill(body.at, body.at + 170, std::uint8_t{0});
    body.put(4, Bytes({10, 0, 0, 9}));
    body.at[144] = 2;
    return 0;
  });
  EXPECT_EQ(runCommand({"getfqdnentries", "-f", kFilter}),
            (CommandResult{0, "Total fqdn entries: -1\nTotal number of uuid entries: -1\n", ""}));
  EXPECT_EQ(kernel.timesAsked(71), 2u);
  EXPECT_TRUE(log.has(4, "fqdn entry 2 of 4294967295 is the one before it\n"));
}

TEST(GetFqdnEntries, CountsOfIdentifiersThatNoMemoryHoldsAreRefused) {
  const LogCapture log;
  for (const std::uint32_t count : {3466479u, ~0u}) {
    FqdnKernel kernel(names());
    kernel.on(71, [&](Body& body) { return body.put32(166, count), body.at[144] = 2, 0; });
    const CommandResult result = runCommand({"getfqdnentries", "-f", kFilter});
    EXPECT_EQ(result.status, 1);
    // A sanitizer's allocator adds a line of its own ahead of the handler's.
    EXPECT_TRUE(result.err.ends_with(std::string("ERROR: failed to uuid: ") +
                                     FW_StatusToString(17) + "\n") ||
                result.err.ends_with("ERROR: GetFqdnEntries: no memory for getting uuid\n"))
        << result.err;
  }
}

TEST(GetFqdnEntries, IdentifiersThatDidNotComeAreLeftOut) {
  FqdnKernel kernel({names()[0]});
  kernel.on(72, [](Body&) { return 0; });
  EXPECT_EQ(runCommand({"getfqdnentries", "-f", kFilter}),
            (CommandResult{0,
                           "Total fqdn entries: 1\nTotal number of uuid entries: 2\n"
                           "Fqdn IP 10.0.0.1\n" +
                               kStart + "  # ttl : 300\n\n",
                           ""}));
}

TEST(GetFqdnEntries, TheTimeIsThatOfTheEntry) {
  FqdnKernel kernel({names()[0]});
  const auto answer = kernel.answerTo(71);
  kernel.on(71, [&](Body& body) { return answer(body), body.put64(145, 86400), 0; });
  const CommandResult result = runCommand({"getfqdnentries", "-f", kFilter});
  EXPECT_NE(maskTime(result.out, 86400).find("  # start_time : TIME\n"), std::string::npos);
}
