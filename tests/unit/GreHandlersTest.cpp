// The handler of GRE, against a scripted kernel.

#include <gtest/gtest.h>

#include <string>

#include "InsertionKernel.h"
#include "LogCapture.h"

namespace {

/// All that is needed, with some of it changed or added.
Words gre(const Words& more = {}) {
  Words words{"gre", "-Override", "-a", "192.168.1.1",       "-k", "0x8",
              "-f",  "0x2000",    "-m", "00:50:56:99:2b:26", "-g", "172.16.1.1"};
  words.insert(words.end(), more.begin(), more.end());
  return words;
}

Bytes greEntry() {
  return Bytes(30)
      .at(0, {192, 168, 1, 1})
      .at(4, {8})
      .at(8, {0, 0x20})
      .at(20, {0x00, 0x50, 0x56, 0x99, 0x2b, 0x26})
      .at(26, {172, 16, 1, 1});
}

}  // namespace

TEST(AddGRE, SendsAnEntry) { EXPECT_EQ(sent(16, gre()), greEntry()); }

TEST(AddGRE, AByteFollowsTheEntry) {
  InsertionKernel kernel;
  int after = -1;
  kernel.on(16, [&](std::uint8_t* body) {
    after = body[30];
    return 0u;
  });
  EXPECT_EQ(runCommand(gre()), kSilent);
  EXPECT_EQ(after, 0);
}

TEST(AddGRE, TheLaterOfKeyAndEthertypeIsTheKey) {
  EXPECT_EQ(sent(16, gre({"-e", "0x0800"})), greEntry().at(4, {0, 8}));
  EXPECT_EQ(sent(16, gre({"-e", "0x883e"})), greEntry().at(4, {0x3e, 0x88}));
  EXPECT_EQ(sent(16, gre({"-e", "0x0800", "-k", "9"})), greEntry().at(4, {9}));
  EXPECT_EQ(sent(16, gre({"-e", "ffff"})), greEntry().at(4, {255, 255}));
  // An ethertype alone is no key.
  expectRefused({"gre", "-Override", "-a", "1.1.1.1", "-e", "0x800", "-f", "0", "-m", "0:0:0:0:0:1",
                 "-g", "1.1.1.2"},
                {1, usageOf("gre"), "ERROR: missing argument(s).\n"});
}

TEST(AddGRE, NumbersAreHexadecimal) {
  EXPECT_EQ(sent(16, gre({"-k", "10", "-f", "ff"})), greEntry().at(4, {16}).at(8, {255, 0}));
  EXPECT_EQ(sent(16, gre({"-k", "ffffffff", "-f", "-1"})),
            greEntry().at(4, {255, 255, 255, 255}).at(8, {255, 255, 255, 255}));
}

TEST(AddGRE, AddressesAreWhatTheResolverTakes) {
  EXPECT_EQ(sent(16, gre({"-a", "10.1", "-g", "0x7f000001"})),
            greEntry().at(0, {10, 0, 0, 1}).at(26, {127, 0, 0, 1}));
}

TEST(AddGRE, HardwareAddressesHaveColonsOrDashes) {
  EXPECT_EQ(sent(16, gre({"-m", "1-2-3-4-5-ab"})), greEntry().at(20, {1, 2, 3, 4, 5, 0xab}));
  EXPECT_EQ(sent(16, gre({"-m", "1:2:3:4:5:abc"})), greEntry().at(20, {1, 2, 3, 4, 5, 0xab}));
}

TEST(AddGRE, RefusesValues) {
  const struct {
    const char* option;
    const char* value;
    const char* line;
  } bad[] = {
      {"-a", "192.168.1.256", "ERROR: invalid ip address 192.168.1.256\n"},
      {"-a", "", "ERROR: invalid ip address \n"},
      {"-a", "%s%n", "ERROR: invalid ip address %s%n\n"},
      {"-k", "key", "ERROR: invalid key: key\n"},
      {"-k", "0x8 ", "ERROR: invalid key: 0x8 \n"},
      {"-k", "", "ERROR: invalid key: \n"},
      {"-k", "100000000", "ERROR: invalid key: 100000000\n"},
      {"-k", "-80000001", "ERROR: invalid key: -80000001\n"},
      {"-f", "0x2000,0", "ERROR: invalid flag: 0x2000,0\n"},
      {"-f", "ffffffffffffffffff", "ERROR: invalid flag: ffffffffffffffffff\n"},
      {"-e", "ip", "ERROR: invalid encapslated protocol: ip\n"},
      {"-e", "10000", "ERROR: invalid encapslated protocol: 10000\n"},
      {"-e", "-1", "ERROR: invalid encapslated protocol: -1\n"},
      {"-g", "guest", "ERROR: invalid guest ip address guest\n"},
  };
  for (const auto& one : bad)
    expectRefused({"gre", "-Override", one.option, one.value}, {1, "", one.line});
}

TEST(AddGRE, ABadHardwareAddressIsReportedAsTheFourthWord) {
  expectRefused(gre({"-m", "1:2:3:4:5"}), {1, "", "ERROR: invalid MAC address 0x8\n"});
  expectRefused({"gre", "-Override", "-k", "1", "-m", "zz"},
                {1, "", "ERROR: invalid MAC address zz\n"});
  expectRefused({"gre", "-Override", "-k1", "-m", "1:2-3:4-5:6"},
                {1, "", "ERROR: invalid MAC address \n"});
  expectRefused({"gre", "-Override", "-m", ""}, {1, "", "ERROR: invalid MAC address \n"});
  expectRefused({"gre", "-Override", "-m", "x", "y", "%s%n"},
                {1, "", "ERROR: invalid MAC address %s%n\n"});
}

TEST(AddGRE, FiveAreNeeded) {
  const CommandResult missing{1, usageOf("gre"), "ERROR: missing argument(s).\n"};
  expectRefused({"gre", "-Override"}, missing);
  const Words all = gre();
  for (std::ptrdiff_t option = 2; option < 12; option += 2) {
    Words words(all.begin(), all.begin() + option);
    words.insert(words.end(), all.begin() + option + 2, all.end());
    expectRefused(words, missing);
  }
}

TEST(AddGRE, NeedsMemory) {
  const InsertionKernel kernel;
  DeviceShim::failNextCalloc();
  EXPECT_EQ(runCommand(gre()), (CommandResult{1, "", "ERROR: no memory for gre buffer\n"}));
  EXPECT_TRUE(kernel.requests().empty());
}

TEST(AddGRE, EndsWithZeroWhenTheRequestFails) {
  const LogCapture log;
  InsertionKernel kernel;
  kernel.fail(16, EPERM);
  EXPECT_EQ(runCommand(gre()), kSilent);
  EXPECT_EQ(log.lines().size(), 1u);
}
