// Every command that is built, as the whole message of a request: its bytes are written here from
// the layout, in a file per family. A command class that is added without a row is named.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "CommandClasses.h"
#include "commands/CommandFamily.h"

using namespace TarnFirewall;

namespace {

/// A message with one command: header, envelope, body. Lengths in host order.
Bytes message(int number, const Bytes& body, int sequence) {
  Bytes bytes(32 + body.size());
  bytes.text(0, "TARN");
  put32(bytes, 4, static_cast<std::uint32_t>(12 + body.size()));  // what follows the header
  bytes.at(8, {sequence, 0, 0, 0});
  bytes.at(12, {1, 1});  // version 1.1
  bytes.at(14, {0, 1});  // a request, to the firewall
  bytes.at(16, {1, 0});  // one command
  bytes.at(18, {0, 0});
  put32(bytes, 20, static_cast<std::uint32_t>(body.size()));
  bytes.at(24, {number, 0});
  bytes.at(26, {0, 0});        // reserved
  bytes.at(28, {0, 0, 0, 0});  // status
  std::copy(body.begin(), body.end(), bytes.begin() + 32);
  return bytes;
}

/// Where and how two byte strings differ; empty when they don't.
std::string difference(const Bytes& is, const Bytes& golden) {
  if (is.size() != golden.size()) {
    return std::to_string(is.size()) + " bytes, not " + std::to_string(golden.size());
  }
  for (std::size_t i = 0; i < is.size(); ++i) {
    if (is[i] != golden[i]) {
      return "byte " + std::to_string(i) + " is " + std::to_string(is[i]) + ", not " +
             std::to_string(golden[i]);
    }
  }
  return "";
}

/// Numbers that the kernel understands and no command object sends.
const std::set<int> kKernelsOwn = {0, 5, 38, 50, 51, 52, 53, 57, 91};

}  // namespace

TEST(TarnFWCmdGolden, EveryClassOfTheCatalogueHasItsGoldenBytesOrComesLater) {
  const std::set<std::string> built = builtCommandClasses();
  std::multiset<std::string> golden;
  std::multiset<std::string> later;
  for (const CommandFamily& family : commandFamilies()) {
    for (const Golden& row : family.goldens) golden.insert(row.className);
    later.insert(family.later.begin(), family.later.end());
  }
  std::set<int> neither;
  std::set<std::string> all;
  for (int number = 0; number < kCmdCount; ++number) {
    if (kCmdCatalogue[number].forms[0].className == nullptr) neither.insert(number);
    for (const FWCmdForm_& form : kCmdCatalogue[number].forms) {
      if (form.className == nullptr) continue;
      const std::string name = form.className;
      EXPECT_TRUE(all.insert(name).second) << name << " stands twice in the catalogue";
      if (built.count(name) != 0) {
        EXPECT_EQ(golden.count(name), 1u) << name << " needs one row of golden bytes";
        EXPECT_EQ(later.count(name), 0u) << name << " is built, and still listed for later";
      } else {
        EXPECT_EQ(golden.count(name), 0u) << name << " is not built, and has golden bytes";
        EXPECT_EQ(later.count(name), 1u) << name << " is not built, and listed nowhere for later";
      }
    }
  }
  EXPECT_EQ(neither, kKernelsOwn);
  for (const std::string& name : golden) EXPECT_EQ(all.count(name), 1u) << name;
  for (const std::string& name : later) EXPECT_EQ(all.count(name), 1u) << name;
}

TEST(TarnFWCmdGolden, EveryClassThatIsDeclaredStandsInTheCatalogue) {
  std::set<std::string> known = builtCommandClasses();
  // These two send nothing of their own.
  known.insert("CTarnFWCmdConfig");
  known.insert("CTarnFWCmdList");
  for (const std::string& name : declaredCommandClasses()) {
    EXPECT_EQ(known.count(name), 1u) << name << " is declared, and the catalogue has no such class";
  }
}

TEST(TarnFWCmdGolden, NumberNameTypeAndSizesAreTheCatalogues) {
  for (const Golden& golden : rowsOf(&CommandFamily::goldens)) {
    SCOPED_TRACE(golden.className);
    const CommandPtr command = golden.make();
    EXPECT_EQ(command->getCommand(), golden.number);
    EXPECT_EQ(command->getType(), golden.type);
    EXPECT_STREQ(command->cmdName(), golden.name);
    EXPECT_EQ(command->getMsgSize(), golden.body.size());

    const FWCmdRow_& row = kCmdCatalogue[golden.number];
    EXPECT_STREQ(row.name, golden.name);
    EXPECT_EQ(row.request, golden.request);
    std::uint32_t body = 0;
    for (const FWCmdForm_& form : row.forms) {
      if (form.className != nullptr && form.className == std::string(golden.className)) {
        body = form.body;
      }
    }
    EXPECT_TRUE(body == kVaries || body == golden.body.size()) << body;
  }
}

TEST(TarnFWCmdGolden, EveryMessageIsItsGoldenBytes) {
  for (const Golden& golden : rowsOf(&CommandFamily::goldens)) {
    SCOPED_TRACE(golden.className);
    FakeKernel kernel;
    const CommandPtr command = golden.make();
    ASSERT_EQ(executeOnce(kernel, *command), 0u);
    // A second time, since a command holds nothing of an earlier run.
    ASSERT_EQ(executeOnce(kernel, *command), 0u);
    ASSERT_EQ(kernel.messages().size(), 2u);
    EXPECT_EQ(difference(kernel.messages()[0].bytes, message(golden.number, golden.body, 0)), "");
    EXPECT_EQ(difference(kernel.messages()[1].bytes, message(golden.number, golden.body, 1)), "");
  }
}

TEST(TarnFWCmdGolden, AClassWritesWhatTheCatalogueCallsItsRequest) {
  const std::set<std::string> cut = namesOf(&CommandFamily::cutRequest);
  for (const Golden& golden : rowsOf(&CommandFamily::goldens)) {
    SCOPED_TRACE(golden.className);
    // What a peer on a socket gets of the body holds all that the class writes before its entries.
    const Bytes body = requestOf(*golden.make());
    ASSERT_EQ(body.size(), golden.body.size());
    std::uint32_t end = golden.entries;
    while (end > 0 && body[end - 1] == 0) --end;
    EXPECT_EQ(end, golden.filled);
    EXPECT_EQ(golden.filled > golden.request, cut.count(golden.className) != 0);
    EXPECT_LE(golden.request, golden.entries);
    EXPECT_LE(golden.entries, body.size());
  }
}
