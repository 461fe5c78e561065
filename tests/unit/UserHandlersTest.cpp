// The handler of users and their security identifiers, against a scripted kernel.

#include <gtest/gtest.h>

#include <string>

#include "HandlerKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"
#include "tarnfw.h"

namespace {

using Body = HandlerKernel::Body;

const char kFilter[] = "nic-1002672-eth0-kelpco-sfw.2";

/// One user, S-1-5-21-9, with one group, S-1-5-32-544.
class UserKernel : public HandlerKernel {
 public:
  UserKernel() {
    on(82, [](Body& body) { return body.put32(4, 1), body.put32(8, 160), 0; });
    on(81, [](Body& body) {
      EXPECT_EQ(body.word(4), 1u);
      EXPECT_EQ(body.word(8), 160u);
      EXPECT_EQ(body.size, 244u);
      putUser(body, 84);
      return 0;
    });
  }

  /// The 160 bytes of the user.
  static void putUser(Body& body, std::size_t at) {
    body.at[at] = 1;
    body.put32(at + 4, 1);
    body.put32(at + 12, 3);
    body.put(at + 20, Bytes({1, 2, 0, 0, 0, 0, 0, 5, 21, 0, 0, 0, 9}));
    body.put(at + 92, Bytes({1, 2, 0, 0, 0, 0, 0, 5, 32, 0, 0, 0, 0x20, 2}));
  }
};

const std::string kSize = "uid2sid map size : 160\nuid2sid map num entries : 1\n";
const std::string kUser =
    "User ID : S-1-5-21-9\nStatus : Active\nNoConn : 3\n{\n  S-1-5-32-544\n}\n";

}  // namespace

TEST(GetSidCache, PrintsTheSizeAndTheUsers) {
  const UserKernel kernel;
  EXPECT_EQ(runCommand({"getsidcache", "-f", kFilter}), (CommandResult{0, kSize + kUser, ""}));
  EXPECT_EQ(kernel.asked(), (std::vector<unsigned int>{82, 81}));
}

TEST(GetSidCache, VerbosityIsPrintedAndDoesNotReachTheLibrary) {
  const LogCapture log;
  const UserKernel kernel;
  EXPECT_EQ(
      runCommand({"getsidcache", "-v", "-v2", "-f", kFilter}),
      (CommandResult{0, "verbose level : 3\nweirgate agent: kelpco-sfw\n" + kSize + kUser, ""}));
  unsigned int level = 99;
  FW_GetLibVerboseLevel(0, &level);
  EXPECT_EQ(level, 0u);
}

TEST(GetSidCache, ReportsTheCallThatFails) {
  UserKernel kernel;
  kernel.fail(81, 21);
  EXPECT_EQ(runCommand({"getsidcache", "-f", kFilter}),
            (CommandResult{1, kSize,
                           std::string("ERROR: Failed to get uid to sid map for filter : ") +
                               kFilter + "\n"}));
  kernel.fail(82, 21);
  EXPECT_EQ(runCommand({"getsidcache", "-f", kFilter}),
            (CommandResult{1, "",
                           std::string("ERROR: Failed to get uid to sid map size for filter : ") +
                               kFilter + "\n"}));
}

TEST(GetSidCache, ASizeThatNoMessageHoldsIsNotAskedFor) {
  const LogCapture log;
  UserKernel kernel;
  kernel.on(82, [](Body& body) { return body.put32(4, ~0u), body.put32(8, ~0u), 0; });
  EXPECT_EQ(
      runCommand({"getsidcache", "-f", kFilter}),
      (CommandResult{
          1, "uid2sid map size : 4294967295\nuid2sid map num entries : 4294967295\n",
          std::string("ERROR: Failed to get uid to sid map for filter : ") + kFilter + "\n"}));
  EXPECT_EQ(kernel.timesAsked(81), 0u);
}

TEST(GetSidCache, UsersAreReadAsFarAsTheReplyGoes) {
  const LogCapture log;
  UserKernel kernel;
  const auto answer = kernel.answerTo(81);
  kernel.on(82, [](Body& body) { return body.put32(4, 9), body.put32(8, 160), 0; });
  kernel.on(81, [&](Body& body) {
    body.put32(4, 1);
    answer(body);
    body.put32(88, ~0u);
    return 0;
  });
  EXPECT_EQ(
      runCommand({"getsidcache", "-f", kFilter}),
      (CommandResult{0, "uid2sid map size : 160\nuid2sid map num entries : 9\n" + kUser, ""}));
}

TEST(GetSidCache, AsManyUsersAreReadAsTheSizeCounts) {
  UserKernel kernel;
  kernel.on(82, [](Body& body) { return body.put32(4, 1), body.put32(8, 320), 0; });
  kernel.on(81, [](Body& body) {
    EXPECT_EQ(body.size, 404u);
    UserKernel::putUser(body, 84);
    UserKernel::putUser(body, 244);
    return 0;
  });
  EXPECT_EQ(
      runCommand({"getsidcache", "-f", kFilter}),
      (CommandResult{0, "uid2sid map size : 320\nuid2sid map num entries : 1\n" + kUser, ""}));
}

TEST(GetSidCache, NoUsersAreNone) {
  UserKernel kernel;
  kernel.on(82, [](Body&) { return 0; });
  kernel.on(81, [](Body& body) {
    EXPECT_EQ(body.size, 84u);
    return 0;
  });
  EXPECT_EQ(runCommand({"getsidcache", "-f", kFilter}),
            (CommandResult{0, "uid2sid map size : 0\nuid2sid map num entries : 0\n", ""}));
}
