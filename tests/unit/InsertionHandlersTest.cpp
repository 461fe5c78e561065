// The handlers of service instances and service profiles, against a scripted kernel.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "FakeKernel.h"
#include "InsertionHandlers.h"
#include "InsertionKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"

namespace {

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";
const char kBadGre[] =
    "ERROR: bad spec, expected proto=prec=addrstr=key=flags=encapProto=gtmac=flipdir\n";
const char kBadMacred[] = "ERROR: bad spec, expected proto=prec=addrstr=dgtmac=flipdir\n";

constexpr std::size_t kInstance = 293, kProfile = 292;

Words create(const std::string& spec) {
  return {"createinstance", "-Override", "-i", "x", "-t", spec};
}

/// An instance "x" with a transport.
Bytes instance(int protocol) { return Bytes(kInstance).text(0, "x").at(116, {protocol}); }

}  // namespace

// --- createinstance, replaceinstance, destroyinstance

TEST(SetServiceInstance, SendsEveryOption) {
  const Bytes body = instance(4)
                         .text(0, "inspect-1")
                         .text(32, "deep inspection")
                         .at(96, {15})
                         .at(100, {2})
                         .at(112, {1})
                         .text(120, "10.20.9.8")
                         .at(248, {0xd2, 0x04, 0, 0})
                         .at(252, {0, 0x20, 0, 0})
                         .at(256, {0x58, 0x65, 0, 0})
                         .text(260, "00:50:56:99:2b:26")
                         .at(292, {1});
  const std::string names[] = {"createinstance", "replaceinstance", "destroyinstance"};
  for (unsigned long number = 1; number <= 3; ++number) {
    EXPECT_EQ(sent(number, {names[number - 1], "-Override", "-i", "inspect-1", "-n",
                            "deep inspection", "-s", "15", "-d", "2", "-f", "-t",
                            "4=10.20.9.8=1234=8192=0x6558=00:50:56:99:2b:26=1"}),
              body);
  }
}

TEST(SetServiceInstance, MacredHasItsGatewayAfterItsDirection) {
  EXPECT_EQ(sent(1, create("3=10.20.9.8=00:50:56:99:2b:26=2")),
            instance(3).text(120, "10.20.9.8").at(248, {2}).text(249, "00:50:56:99:2b:26"));
}

TEST(SetServiceInstance, ProtocolsWithoutOptionsSaySo) {
  EXPECT_EQ(sent(1, create("1"), {0, "No options for RIBS.\n", ""}), instance(1));
  EXPECT_EQ(sent(1, create("2=more"), {0, "No options for PLANKIO.\n", ""}), instance(2));
  EXPECT_EQ(sent(1, create("11"), {0, "No protocol.\n", ""}), instance(11));
}

TEST(SetServiceInstance, ProtocolsAreReadWhileOptionsAre) {
  expectRefused({"createinstance", "-Override", "-t", "2"},
                {1, "No options for PLANKIO.\n" + usageOf("createinstance"), ""});
}

TEST(SetServiceInstance, SeveralSeparatorsCountAsOne) {
  EXPECT_EQ(sent(1, create("==3==a==b====0==more=")), instance(3).text(120, "a").text(249, "b"));
}

TEST(SetServiceInstance, NumbersOfATransportHaveTheirBases) {
  // Key and flags are decimal, the protocol is what its prefix says.
  EXPECT_EQ(sent(1, create("4=a=0x10=010=010=m=-1")),
            instance(4).text(120, "a").at(252, {10}).at(256, {8}).text(260, "m").at(292, {255}));
  EXPECT_EQ(sent(1, create("4=a=4294967295=-2=0x800=m=0")), instance(4)
                                                                .text(120, "a")
                                                                .at(248, {255, 255, 255, 255})
                                                                .at(252, {254, 255, 255, 255})
                                                                .at(256, {0, 8})
                                                                .text(260, "m"));
}

TEST(SetServiceInstance, ANumberWithMoreBitsThanItsFieldIsNoOtherOne) {
  EXPECT_EQ(sent(1, create("4=a=4294967297=99999999999999999999=0=m=256")),
            instance(4)
                .text(120, "a")
                .at(248, {255, 255, 255, 255})
                .at(252, {255, 255, 255, 255})
                .text(260, "m")
                .at(292, {255}));
  expectRefused(create("4294967298"), {1, "", "ERROR: invalid protocol: 2147483647\n"});
  expectRefused(create("4=a=1=2=4294967296=m=0"),
                {1, "", "ERROR: bad encap protocol 4294967296\n"});
  EXPECT_EQ(sent(3, {"destroyinstance", "-Override", "-i", "x", "-d", "4294967299"}),
            Bytes(kInstance).text(0, "x").at(100, {255, 255, 255, 255}));
}

TEST(SetServiceInstance, TextsOfATransportAreCut) {
  const std::string longest(127, 'a');
  const std::string mac(31, 'm');
  EXPECT_EQ(sent(1, create("3=" + longest + "b=" + mac + "n=0")),
            instance(3).text(120, longest).text(249, mac));
  EXPECT_EQ(sent(1, create("4=" + longest + "b=1=2=3=" + mac + "n=0")),
            instance(4).text(120, longest).at(248, {1}).at(252, {2}).at(256, {3}).text(260, mac));
}

TEST(SetServiceInstance, ALaterTransportReplacesTheFirst) {
  Words words = create("4=address=1=2=3=mac=1");
  words.insert(words.end(), {"-t", "3=a=m=0"});
  EXPECT_EQ(sent(1, words), instance(3).text(120, "a").text(249, "m"));
  words = create("4=address=1=2=3=mac=1");
  words.insert(words.end(), {"-t", "11"});
  EXPECT_EQ(sent(1, words, {0, "No protocol.\n", ""}), instance(11));
}

TEST(SetServiceInstance, RefusesSpecifications) {
  for (const char* spec : {"", "=", "==="})
    expectRefused(create(spec), {1, "", "ERROR: invalid transport specification\n"});
  for (const char* spec : {"4", "4=", "4=a=1=2", "4=a=1=2=3", "4=a=1=2=3=m", "4=a=1=2=3=m=="})
    expectRefused(create(spec), {1, "", kBadGre});
  for (const char* spec : {"3", "3=a", "3=a=m", "3=a=m="})
    expectRefused(create(spec), {1, "", kBadMacred});
  expectRefused(create("5=a"), {1, "", "ERROR: invalid protocol: 5\n"});
  expectRefused(create("GRE"), {1, "", "ERROR: invalid protocol: 0\n"});
  expectRefused(create("-4"), {1, "", "ERROR: invalid protocol: -4\n"});
  expectRefused(create("4=a=1=2=0x6558x=m=0"), {1, "", "ERROR: bad encap protocol 0x6558x\n"});
  // Tokens are looked at one after the other.
  expectRefused(create("4=a=1=2=IP"), {1, "", "ERROR: bad encap protocol IP\n"});
  expectRefused(create("4=a=1=2=%s%n=m=0"), {1, "", "ERROR: bad encap protocol %s%n\n"});
  expectRefused(create("4=a=1=2=99999999999999999999=m=0"),
                {1, "", "ERROR: bad encap protocol 99999999999999999999\n"});
}

TEST(SetServiceInstance, TextsHaveTheirLimits) {
  const std::string id(31, 'i'), name(63, 'n');
  EXPECT_EQ(sent(3, {"destroyinstance", "-Override", "-i", id, "-n", name}),
            Bytes(kInstance).text(0, id).text(32, name));
  expectRefused({"destroyinstance", "-Override", "-i", id + "j"},
                {1, "", "ERROR: invalid instance id " + id + "j\n"});
  expectRefused({"destroyinstance", "-Override", "-n", name + "%s%n"},
                {1, "", "ERROR: invalid instance name " + name + "%s%n\n"});
}

TEST(SetServiceInstance, SlotsAreZeroToFifteen) {
  for (const char* slot : {"16", "-1", "4294967296", "99999999999999999999"})
    expectRefused({"destroyinstance", "-Override", "-i", "x", "-s", slot},
                  {1, "", "ERROR: invalid slot number, expected 0 to 15\n"});
  EXPECT_EQ(sent(3, {"destroyinstance", "-Override", "-i", "x", "-s", "0"}),
            Bytes(kInstance).text(0, "x"));
}

TEST(SetServiceInstance, SaysWhatIsNeeded) {
  for (const char* word : {"createinstance", "replaceinstance"}) {
    const CommandResult usage{1, usageOf(word), ""};
    expectRefused({word, "-Override"}, usage);
    expectRefused({word, "-Override", "-i", "x"}, usage);
    expectRefused({word, "-Override", "-t", "3=a=m=0"}, usage);
  }
  expectRefused({"destroyinstance", "-Override"}, {1, usageOf("destroyinstance"), ""});
  EXPECT_EQ(sent(3, {"destroyinstance", "-Override", "-i", "x"}), Bytes(kInstance).text(0, "x"));
}

TEST(SetServiceInstance, KnowsThreeOperations) {
  char word[] = "createinstance";
  char* argv[] = {word, nullptr};
  for (const int operation : {0, 4, -1})
    EXPECT_EQ(captured([&] { return SetServiceInstance(word, 1, argv, operation); }),
              (CommandResult{1, "Invalid command entered", ""}));
}

TEST(SetServiceInstance, EndsWithZeroWhenTheRequestFails) {
  const LogCapture log;
  InsertionKernel kernel;
  kernel.fail(1, EPERM);
  EXPECT_EQ(runCommand(create("3=a=m=0")), kSilent);
  EXPECT_EQ(log.lines().size(), 1u);
}

// --- getinstances

namespace {

/// What is printed of an instance up to its transport.
std::string instanceText(const std::string& id, const std::string& name, const std::string& type,
                         const std::string& references, const std::string& marked,
                         const std::string& protocol) {
  return "Instance Id              : " + id + "\nName                     : " + name +
         "\nDeployment Type          : " + type + "\nRef Count                : " + references +
         "\nMark for Deletion        : " + marked +
         "\n-- Transport --\nProtocol                 : " + protocol + "\n";
}

const Bytes kGreInstance = Bytes(kInstance)
                               .text(0, "inspect-1")
                               .text(32, "deep inspection")
                               .at(100, {4})
                               .at(104, {2})
                               .at(108, {1})
                               .at(116, {4})
                               .text(120, "10.20.9.8")
                               .at(248, {210, 4})
                               .at(252, {0, 32})
                               .at(256, {0x58, 0x65})
                               .text(260, "00:50:56:99:2b:26")
                               .at(292, {255});
const std::string kGreText = instanceText("inspect-1", "deep inspection", "4", "2", "1", "4") +
                             "Address Str              : 10.20.9.8\n"
                             "GRE key                  : 1234\n"
                             "GRE Flags                : 8192\n"
                             "GRE Encap Protocol       : 25944\n"
                             "GRE Gtway Mac            : 00:50:56:99:2b:26\n"
                             "GRE Flip dir             : 255\n\n";

const Bytes kMacredInstance = Bytes(kInstance)
                                  .text(0, std::string(32, 'i'))
                                  .text(32, std::string(64, 'n'))
                                  .at(100, {255, 255, 255, 255})
                                  .at(116, {3})
                                  .text(120, std::string(128, 'a'))
                                  .at(248, {1})
                                  .text(249, std::string(32, 'm'));
const std::string kMacredText =
    instanceText(std::string(32, 'i'), std::string(64, 'n'), "-1", "0", "0", "3") +
    "Address Str              : " + std::string(128, 'a') +
    "\nMACRED Gtway Mac         : " + std::string(32, 'm') + "\nMACRED Flip dir          : 1\n\n";

const std::string kNoInstanceText = instanceText("", "", "0", "0", "0", "0") + "\n";

}  // namespace

TEST(GetInstances, ShowsAll) {
  InsertionKernel kernel;
  kernel.list(4, 32, {kGreInstance, kMacredInstance, Bytes(kInstance).text(0, "%s").at(116, {11})});
  EXPECT_EQ(runCommand({"getinstances"}),
            (CommandResult{0,
                           "Num instances = 3\n\n" + kGreText + kMacredText +
                               instanceText("%s", "", "0", "0", "0", "11") + "\n",
                           ""}));
  ASSERT_EQ(kernel.requests().size(), 2u);
  EXPECT_EQ(kernel.requests()[0].body, Bytes(48));
  Bytes query = kernel.requests()[1].body;
  EXPECT_NE(Bytes(query.begin() + 40, query.end()), Bytes(8));
  query.at(40, {0, 0, 0, 0, 0, 0, 0, 0});
  EXPECT_EQ(query, Bytes(48).at(32, {3}).at(36, {0x6f, 0x03}));  // 3 x 293
}

TEST(GetInstances, ShowsOneWhateverItsCount) {
  InsertionKernel kernel;
  kernel.list(4, 32, {kGreInstance});
  for (const std::uint32_t count : {0u, 5u, ~0u}) {
    kernel.returned = count;
    EXPECT_EQ(runCommand({"getinstances", "-i", "inspect-1"}), (CommandResult{0, kGreText, ""}));
  }
  ASSERT_EQ(kernel.requests().size(), 3u);
  EXPECT_EQ(kernel.requests()[0].number, 5u);
  Bytes query = kernel.requests()[0].body;
  query.at(40, {0, 0, 0, 0, 0, 0, 0, 0});
  EXPECT_EQ(query, Bytes(48).text(0, "inspect-1").at(36, {0x25, 0x01}));  // 293
}

TEST(GetInstances, TheSmallerOfTwoCountsIsShown) {
  const LogCapture log;
  InsertionKernel kernel;
  kernel.list(4, 32, {kGreInstance, kMacredInstance});
  kernel.returned = 1;
  EXPECT_EQ(runCommand({"getinstances"}),
            (CommandResult{0, "Num instances = 2\n\n" + kGreText, ""}));
  EXPECT_TRUE(log.lines().empty());
  for (const std::uint32_t count : {3u, ~0u}) {
    kernel.returned = count;
    EXPECT_EQ(runCommand({"getinstances"}),
              (CommandResult{0, "Num instances = 2\n\n" + kGreText + kMacredText, ""}));
  }
  EXPECT_EQ(log.lines().size(), 2u);
  kernel.returned = 0;
  EXPECT_EQ(runCommand({"getinstances"}), (CommandResult{0, "Num instances = 2\n\n", ""}));
}

TEST(GetInstances, NoneAreShownAsNone) {
  InsertionKernel kernel;
  kernel.list(4, 32, {});
  EXPECT_EQ(runCommand({"getinstances"}), (CommandResult{0, "Num instances = 0\n\n", ""}));
  EXPECT_EQ(kernel.requests().size(), 1u);
}

TEST(GetInstances, FailedRequestsShowWhatWasNotWritten) {
  const LogCapture log;
  InsertionKernel kernel;
  kernel.list(4, 32, {kGreInstance});
  kernel.fail(5, EIO);
  EXPECT_EQ(runCommand({"getinstances", "-i", "x"}), (CommandResult{0, kNoInstanceText, ""}));
  EXPECT_EQ(runCommand({"getinstances"}),
            (CommandResult{0, "Num instances = 1\n\n" + kNoInstanceText, ""}));
  kernel.fail(4, EIO);
  EXPECT_EQ(runCommand({"getinstances"}), (CommandResult{0, "Num instances = 0\n\n", ""}));
}

TEST(GetInstances, NeedsMemory) {
  InsertionKernel kernel;
  kernel.list(4, 32, {kGreInstance});
  DeviceShim::failNextCalloc();
  EXPECT_EQ(runCommand({"getinstances"}),
            (CommandResult{1, "Num instances = 1\n\n",
                           "ERROR: no memory for 1 instances: Cannot allocate memory\n"}));
  // Counts whose size does not fit the request: 2^32 / 293 is 14658591.5.
  for (const std::uint32_t count : {14658592u, 0x80000000u, ~0u}) {
    kernel.known = count;
    const std::string number = std::to_string(count);
    EXPECT_EQ(
        runCommand({"getinstances"}),
        (CommandResult{1, "Num instances = " + number + "\n\n",
                       "ERROR: no memory for " + number + " instances: Cannot allocate memory\n"}));
  }
  EXPECT_EQ(kernel.requests().size(), 4u);
}

TEST(GetInstances, TheIdHasItsLimit) {
  const std::string id(31, 'i');
  const InsertionKernel kernel;
  EXPECT_EQ(runCommand({"getinstances", "-i", id}), (CommandResult{0, kNoInstanceText, ""}));
  expectRefused({"getinstances", "-i", id + "j"},
                {1, "", "ERROR: invalid instance id " + id + "j\n"});
}

// --- createprofile, destroyprofile

TEST(CreateDestroyProfile, SendsEveryOption) {
  const std::string id(31, 'p'), instanceId(31, 'i'), vendor(63, 'v'), provided(63, 't');
  const std::string filter(99, 'f');
  EXPECT_EQ(sent(8, {"createprofile", "-Override", "-f", filter, "-p", id, "-i", instanceId, "-v",
                     vendor, "-t", provided}),
            Bytes(kProfile)
                .text(0, id)
                .text(32, instanceId)
                .text(64, filter)
                .text(164, vendor)
                .text(228, provided));
  EXPECT_EQ(sent(8, {"createprofile", "-Override", "-f", kFilter, "-p", "p", "-i", "i"}),
            Bytes(kProfile).text(0, "p").text(32, "i").text(64, kFilter));
  EXPECT_EQ(
      sent(10, {"destroyprofile", "-Override", "-f", kFilter, "-v", "vendor", "-t", "provided"}),
      Bytes(kProfile).text(64, kFilter).text(164, "vendor").text(228, "provided"));
}

TEST(CreateDestroyProfile, TextsHaveTheirLimits) {
  const struct {
    const char* option;
    std::size_t most;
    const char* line;
  } limits[] = {{"-f", 99, "ERROR: invalid filter name "},
                {"-p", 31, "ERROR: invalid profile id "},
                {"-i", 31, "ERROR: invalid instance id "},
                {"-v", 63, "ERROR: invalid vendor template id "},
                {"-t", 63, "ERROR: invalid vendor provided template id "}};
  for (const auto& limit : limits) {
    std::string value = "%s%n%s";  // printed as it is
    value.resize(limit.most + 1, 'x');
    for (const char* word : {"createprofile", "destroyprofile"})
      expectRefused({word, "-Override", limit.option, value}, {1, "", limit.line + value + "\n"});
  }
}

TEST(CreateDestroyProfile, CreationNeedsThreeAndDestructionForbidsTwo) {
  const CommandResult creation{1, usageOf("createprofile"), ""};
  const char* word = "createprofile";
  expectRefused({word, "-Override"}, creation);
  expectRefused({word, "-Override", "-p", "p", "-i", "i"}, creation);
  expectRefused({word, "-Override", "-f", kFilter, "-i", "i"}, creation);
  expectRefused({word, "-Override", "-f", kFilter, "-p", "p", "-v", "v", "-t", "t"}, creation);
  const CommandResult destruction{1, usageOf("destroyprofile"), ""};
  word = "destroyprofile";
  expectRefused({word, "-Override"}, destruction);
  expectRefused({word, "-Override", "-v", "v"}, destruction);
  expectRefused({word, "-Override", "-f", kFilter, "-p", "p"}, destruction);
  expectRefused({word, "-Override", "-f", kFilter, "-i", "i"}, destruction);
}

TEST(CreateDestroyProfile, EndsWithZeroWhenTheRequestFails) {
  const LogCapture log;
  InsertionKernel kernel;
  kernel.fail(8, EEXIST);
  kernel.fail(10, ENOENT);
  EXPECT_EQ(runCommand({"createprofile", "-Override", "-f", "f", "-p", "p", "-i", "i"}), kSilent);
  EXPECT_EQ(runCommand({"destroyprofile", "-Override", "-f", "f"}), kSilent);
  EXPECT_EQ(log.lines().size(), 2u);
}

// --- getprofiles

namespace {

Bytes profile(const std::string& id, const std::string& filter) {
  return Bytes(kProfile)
      .text(0, id)
      .text(32, std::string(32, 'i'))
      .text(64, filter)
      .text(164, std::string(64, 'v'))
      .text(228, "provided");
}

std::string profileText(const std::string& id, const std::string& filter) {
  return "Profile Id                     : " + id +
         "\nInstance Id                    : " + std::string(32, 'i') +
         "\nFilter Name                    : " + filter +
         "\nVendor Template Id             : " + std::string(64, 'v') +
         "\nVendor Provided Template Id    : provided\n\n";
}

const char kNoProfileText[] =
    "Profile Id                     : \nInstance Id                    : \n"
    "Filter Name                    : \nVendor Template Id             : \n"
    "Vendor Provided Template Id    : \n\n";

}  // namespace

TEST(GetProfiles, ShowsAll) {
  InsertionKernel kernel;
  const std::string longest(100, 'f');
  kernel.list(11, 100, {profile("one", kFilter), profile("%n", longest)});
  EXPECT_EQ(
      runCommand({"getprofiles"}),
      (CommandResult{
          0, "Num profiles = 2\n\n" + profileText("one", kFilter) + profileText("%n", longest),
          ""}));
  ASSERT_EQ(kernel.requests().size(), 2u);
  EXPECT_EQ(kernel.requests()[0].body, Bytes(116));
  Bytes query = kernel.requests()[1].body;
  query.at(108, {0, 0, 0, 0, 0, 0, 0, 0});
  EXPECT_EQ(query, Bytes(116).at(100, {2}).at(104, {0x48, 0x02}));  // 2 x 292
}

TEST(GetProfiles, ShowsThatOfAFilter) {
  InsertionKernel kernel;
  kernel.list(11, 100, {profile("one", kFilter)});
  kernel.returned = 0;
  EXPECT_EQ(runCommand({"getprofiles", "-f", kFilter}),
            (CommandResult{0, profileText("one", kFilter), ""}));
  ASSERT_EQ(kernel.requests().size(), 1u);
  EXPECT_EQ(kernel.requests()[0].number, 12u);
  Bytes query = kernel.requests()[0].body;
  query.at(108, {0, 0, 0, 0, 0, 0, 0, 0});
  EXPECT_EQ(query, Bytes(116).text(0, kFilter).at(104, {0x24, 0x01}));  // 292
}

TEST(GetProfiles, CountsThatDoNotAgree) {
  const LogCapture log;
  InsertionKernel kernel;
  kernel.list(11, 100, {profile("one", kFilter)});
  kernel.returned = ~0u;
  EXPECT_EQ(runCommand({"getprofiles"}),
            (CommandResult{0, "Num profiles = 1\n\n" + profileText("one", kFilter), ""}));
  EXPECT_EQ(log.lines().size(), 1u);
  kernel.returned = 0;
  EXPECT_EQ(runCommand({"getprofiles"}), (CommandResult{0, "Num profiles = 1\n\n", ""}));
}

TEST(GetProfiles, FailedRequestsShowWhatWasNotWritten) {
  const LogCapture log;
  InsertionKernel kernel;
  kernel.list(11, 100, {profile("one", kFilter)});
  kernel.fail(12, ENOENT);
  EXPECT_EQ(runCommand({"getprofiles", "-f", kFilter}), (CommandResult{0, kNoProfileText, ""}));
  EXPECT_EQ(runCommand({"getprofiles"}),
            (CommandResult{0, std::string("Num profiles = 1\n\n") + kNoProfileText, ""}));
  kernel.fail(11, ENOENT);
  EXPECT_EQ(runCommand({"getprofiles"}), (CommandResult{0, "Num profiles = 0\n\n", ""}));
}

TEST(GetProfiles, NeedsMemory) {
  InsertionKernel kernel;
  kernel.list(11, 100, {profile("one", kFilter)});
  DeviceShim::failNextCalloc();
  EXPECT_EQ(runCommand({"getprofiles"}),
            (CommandResult{1, "Num profiles = 1\n\n",
                           "ERROR: no memory for 1 profiles: Cannot allocate memory\n"}));
  // 2^32 / 292 is 14708792.1.
  for (const std::uint32_t count : {14708793u, ~0u}) {
    kernel.known = count;
    const std::string number = std::to_string(count);
    EXPECT_EQ(
        runCommand({"getprofiles"}),
        (CommandResult{1, "Num profiles = " + number + "\n\n",
                       "ERROR: no memory for " + number + " profiles: Cannot allocate memory\n"}));
  }
}
