#include <gtest/gtest.h>

#include <vector>

#include "Expect.h"
#include "LogCapture.h"
#include "TarnFWIOChannel.h"
#include "TarnFWLog.h"

using namespace TarnFirewall;

namespace {

class Channel final : public CTarnFWIOChannel {
 public:
  FWStatus_t sendIOCTL(dvs_port_*, void*, unsigned int, void*) override { return 0; }
};

/// One command 31 with a body of one byte.
Bytes message() {
  return Bytes(20 + 12 + 1)
      .text(0, "TARN")
      .at(4, {13, 0, 0, 0, 9, 0, 0, 0, 1, 1, 0, 1, 1, 0})
      .at(20, {1, 0, 0, 0, 31, 0, 0, 0, 26, 0, 0, 0});
}

std::vector<std::string> lines(const Bytes& bytes, unsigned int size, int level) {
  LogCapture log;
  g_tarnfw_verbose[FW_COMPONENT_IO].level = level;
  Channel().validateMessage(bytes.data(), size);
  std::vector<std::string> result;
  const std::string place = "7|tarnfw:io TarnFWIOChannel:validateMessage():N ";
  for (const std::string& line : log.normalized()) {
    EXPECT_EQ(line.rfind(place, 0), 0u) << line;
    result.push_back(line.substr(place.size()));
  }
  return result;
}

std::vector<std::string> lines(const Bytes& bytes) {
  return lines(bytes, static_cast<unsigned int>(bytes.size()), 3);
}

}  // namespace

TEST(TarnFWIOChannel, DescribesAMessageAboveLevelTwo) {
  EXPECT_EQ(lines(message()),
            (std::vector<std::string>{
                "Validating message\n", ". ok   : message signature found\n",
                ". ok   : message body length is 13\n", ". ok   : message sequence is 9\n",
                ". ok   : message major version is 1\n", ". ok   : message minor version is 1\n",
                ". ok   : message type is request\n", ". ok   : message category is firewall\n",
                ". ok   : message contains 1 commads\n", ". ok   : message padding is zero\n",
                ". command no. 0\n", ". body bytes: 1\n", ". command: 31\n", ". status: 26\n"}));
}

TEST(TarnFWIOChannel, SaysOnlyThatItValidatesAtLevelTwo) {
  EXPECT_EQ(lines(message(), 33, 2), std::vector<std::string>{"Validating message\n"});
}

TEST(TarnFWIOChannel, SaysNothingAtLevelOne) { EXPECT_TRUE(lines(message(), 33, 1).empty()); }

TEST(TarnFWIOChannel, NamesWhatIsWrongAndNeverFails) {
  const auto said = lines(message().text(0, "NRAT").at(14, {2}).at(15, {7}).at(18, {3, 1}));
  EXPECT_EQ(said[1], ". error: message signature not found\n");
  EXPECT_EQ(said[6], ". error: message type is unknown (2)\n");
  EXPECT_EQ(said[7], ". fail: message category is unknown (7)\n");
  EXPECT_EQ(said[9], ". fail: message padding is unknown (259)\n");
}

TEST(TarnFWIOChannel, TypeOneIsAResponse) {
  EXPECT_EQ(lines(message().at(14, {1}))[6], ". ok   : message type is response\n");
}

TEST(TarnFWIOChannel, ShowsTheFirstCommandOnEveryPass) {
  Bytes two(20 + 24);
  two.text(0, "TARN").at(12, {1, 1, 0, 1, 2}).at(24, {31}).at(36, {32});
  const auto said = lines(two);
  ASSERT_EQ(said.size(), 18u);
  EXPECT_EQ(said[10], ". command no. 0\n");
  EXPECT_EQ(said[12], ". command: 31\n");
  EXPECT_EQ(said[14], ". command no. 1\n");
  EXPECT_EQ(said[16], ". command: 31\n");
}

TEST(TarnFWIOChannel, ReadsNothingAfterAShortMessage) {
  // The heap block ends where the message does, so that a sanitizer sees a read after it.
  for (unsigned int size = 0; size < 32; ++size) {
    Bytes cut = message();
    cut.resize(size);
    cut.shrink_to_fit();
    EXPECT_EQ(lines(cut).size(), size < 20 ? 1u : 10u) << "size " << size;
  }
}
