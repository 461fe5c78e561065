// Handlers of what a filter learns of names and of layer 7, against a scripted kernel.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "HandlerKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "tarnfw.h"

namespace {

using Body = HandlerKernel::Body;

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";

/// Keeps the profile and the mode that it was sent.
class ProfileKernel : public HandlerKernel {
 public:
  ProfileKernel() {
    on(83, [this](Body& body) {
      EXPECT_EQ(body.size, 13u);
      for (std::size_t i = 0; i < 13; ++i) profile[i] = body.at[i];
      return 0;
    });
    on(84, [this](Body& body) { return body.put(0, profile), 0; });
    on(85, [this](Body& body) { return mode = body.word(0), 0; });
  }
  Bytes profile = Bytes(13);
  std::uint32_t mode = 9;
};

CommandResult run(const char* command, std::vector<std::string> options) {
  options.insert(options.begin(), {command, "-f", kFilter});
  return runCommand(options);
}

const CommandResult kSilent{0, "", ""};

}  // namespace

TEST(SetDnsConfigProfile, SendsTheTimeToLive) {
  const std::vector<std::pair<std::vector<std::string>, Bytes>> rows = {
      {{}, Bytes(13)},
      {{"-t", "0"}, Bytes(13)},
      {{"-t", "300"}, Bytes(13).at(5, {0x2c, 1})},
      {{"-t", "864000"}, Bytes(13).at(5, {0, 0x2f, 0x0d})},
      {{"-t", "AUTO"}, Bytes(13).at(4, {2})},
      {{"-t", "auto"}, Bytes(13).at(4, {2})},
      {{"-t", "mAx"}, Bytes(13).at(4, {1})},
      {{"--ttl=MAX"}, Bytes(13).at(4, {1})},
      {{"-t", "MAX", "-t", "1"}, Bytes(13).at(5, {1})},
      {{"-t", "1", "-t", "MAX"}, Bytes(13).at(4, {1})},
      {{"-n", "x", "-a", "y", "--address"}, Bytes(13)},
  };
  for (const auto& [options, profile] : rows) {
    ProfileKernel kernel;
    EXPECT_EQ(run("setdnsconfigprofile", options), kSilent);
    EXPECT_EQ(kernel.profile, profile);
    EXPECT_STREQ(kernel.kernel().last().port->identifier, kFilter);
  }
}

TEST(SetDnsConfigProfile, ABadTimeToLiveIsNotSent) {
  ProfileKernel kernel;
  for (const char* const command : {"setdnsconfigprofile", "getdnsconfigprofile"}) {
    for (const char* const bad : {"864001", "-1", "1x", "", "x", "AUTOS", "MA", "4294967296",
                                  "99999999999999999999", "1.5"}) {
      EXPECT_EQ(run(command, {"-t", bad}),
                (CommandResult{1, std::string("invalid ttl value ") + bad + "\n", ""}));
    }
    // Without "=" the word has no value.
    for (const std::vector<std::string>& options :
         {std::vector<std::string>{"--ttl"}, {"--ttl", "5"}}) {
      EXPECT_EQ(run(command, options), (CommandResult{1, "invalid ttl value \n", ""}));
    }
  }
  EXPECT_TRUE(kernel.asked().empty());
}

TEST(GetDnsConfigProfile, PrintsWhatTheKernelHas) {
  ProfileKernel kernel;
  const std::vector<std::pair<int, std::string>> rows = {
      {0, "66051 secs"}, {1, "Infinite"}, {2, "auto"}, {3, "66051 secs"}, {255, "66051 secs"}};
  for (const auto& [kind, text] : rows) {
    kernel.profile = Bytes(13).at(4, {kind, 3, 2, 1, 0, 0xff, 0xff, 0xff, 0xff});
    EXPECT_EQ(run("getdnsconfigprofile", {}),
              (CommandResult{0, "Time To Live Value : " + text + "\n", ""}));
  }
}

TEST(DnsConfigProfile, BothReportTheSameFailure) {
  ProfileKernel kernel;
  kernel.fail(83, 21);
  kernel.fail(84, 21);
  const CommandResult failed{1, "",
                             std::string("ERROR: Failed to set dns config for ") + kFilter + "\n"};
  EXPECT_EQ(run("setdnsconfigprofile", {}), failed);
  EXPECT_EQ(run("getdnsconfigprofile", {}), failed);
}

TEST(SetL7CopyMode, TheLastChoiceCounts) {
  const std::vector<std::pair<std::vector<std::string>, std::uint32_t>> rows = {
      {{"-e"}, 1},       {{"-d"}, 0},        {{"-ed"}, 0},        {{"-d", "-e"}, 1},
      {{"--enable"}, 1}, {{"--disable"}, 0}, {{"--enable=0"}, 1}, {{"-e", "--disable=1"}, 0},
  };
  for (const auto& [options, mode] : rows) {
    ProfileKernel kernel;
    EXPECT_EQ(run("setcopymode", options), kSilent);
    EXPECT_EQ(kernel.mode, mode) << options[0];
  }
}

TEST(SetL7CopyMode, SaysWhatIsMissingAndWhatFails) {
  ProfileKernel kernel;
  const CommandResult missing = run("setcopymode", {});
  EXPECT_EQ(missing.err, "ERROR: select either enable/disable\n");
  EXPECT_EQ(missing.out, run("setcopymode", {"-h"}).out);
  EXPECT_EQ(missing.status, 1);
  kernel.fail(85, 21);
  EXPECT_EQ(
      run("setcopymode", {"-e"}),
      (CommandResult{
          1, "", std::string("ERROR: Failed to set L7 copy mode config for ") + kFilter + "\n"}));
}
