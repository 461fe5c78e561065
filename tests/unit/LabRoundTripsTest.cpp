#include <cerrno>

#include "LabBench.h"
#include "LabFlowFile.h"

namespace TarnLab {
namespace {

class LabRoundTrips : public FilledLabBench {
 protected:
  LabRoundTrips() : file_(*FlowFile::open(store, Host::load(store).folderOf(0))) {}

  Record request(std::uint64_t flow, unsigned reset = 0) const {
    return Record().text(web, 100).u64(flow).u32(0).u32(220).u32(0).u32(reset).to(220);
  }
  int ask(std::uint64_t flow, unsigned reset = 0) {
    body = request(flow, reset);
    return direct(42, body);
  }

  /// The ids of the TCP connections, or of the others.
  std::vector<std::uint64_t> flows(bool tcp) const {
    std::vector<std::uint64_t> ids;
    for (std::size_t i = 0; i < file_.count(activeGroup); ++i) {
      const ConstBytes flow = file_.record(activeGroup, i);
      if (!FlowRecord::isIp(flow)) continue;
      if ((FlowRecord::protocol.get(flow) == FlowRecord::tcp) == tcp) {
        ids.push_back(FlowRecord::id.get(flow));
      }
    }
    return ids;
  }

  std::uint32_t roundTrip(std::uint64_t id) const {
    const auto file = FlowFile::open(store, Host::load(store).folderOf(0));
    const ConstBytes flow = file->record(activeGroup, file->placeOfId(id));
    return FlowRecord::shapeOf(flow).roundTrip.get(flow);
  }

  /// The time of a direction as the kernel's users count it.
  std::uint64_t timeOf(std::size_t window, std::size_t samples, std::size_t average) const {
    const std::uint64_t weight =
        std::uint64_t{get32(body, 200)} * (get32(body, 204) + get32(body, 208));
    return ((weight - get32(body, samples)) * get64(body, average) + get64(body, window)) / weight /
           get64(body, 188);
  }

  ByteVector body;

 private:
  FlowFile file_;
};

TEST_F(LabRoundTrips, BothDirectionsAddUpToWhatTheListOfFlowsShows) {
  bool withoutSamples[2] = {false, false};
  for (const std::uint64_t id : flows(true)) {
    ASSERT_EQ(ask(id), 0) << note();
    EXPECT_EQ(get32(body, 108), 1u);
    EXPECT_EQ(get32(body, 196), roundTrip(id));
    EXPECT_EQ(timeOf(148, 164, 172) + timeOf(156, 168, 180), roundTrip(id));
    EXPECT_NE(get32(body, 124), get32(body, 128));
    withoutSamples[0] = withoutSamples[0] || get32(body, 164) == 0;
    withoutSamples[1] = withoutSamples[1] || get32(body, 168) == 0;
  }
  EXPECT_TRUE(withoutSamples[0] && withoutSamples[1]) << "each direction lacks samples somewhere";
}

TEST_F(LabRoundTrips, OnlyTcpConnectionsHaveThem) {
  for (const std::uint64_t id : flows(false)) {
    const ByteVector sent = request(id);
    ASSERT_EQ(ask(id), 0);
    EXPECT_EQ(body, sent) << id;
  }
  for (const std::uint64_t id : {std::uint64_t{0}, std::uint64_t{1}, ~std::uint64_t{0}}) {
    ASSERT_EQ(ask(id), 0);
    EXPECT_EQ(get32(body, 108), 0u);
  }
}

TEST_F(LabRoundTrips, AResetAnswersAndThenStartsAgain) {
  const std::vector<std::uint64_t> ids = flows(true);
  const std::uint32_t before = roundTrip(ids[0]);
  ASSERT_NE(before, 0u);
  ASSERT_EQ(ask(ids[0], 1), 0);
  EXPECT_EQ(get32(body, 196), before);
  EXPECT_EQ(roundTrip(ids[0]), 0u);
  EXPECT_NE(roundTrip(ids[1]), 0u) << "of this flow only";
  ASSERT_EQ(ask(ids[0]), 0);
  EXPECT_EQ(get32(body, 108), 1u);
  EXPECT_EQ(get32(body, 196), 0u);
  EXPECT_EQ(get32(body, 164) + get32(body, 168), 0u);
  EXPECT_EQ(get64(body, 172) + get64(body, 180), 0u);
}

TEST_F(LabRoundTrips, RefusesARequestThatIsNotInItsForm) {
  const std::uint64_t id = flows(true)[0];
  const auto refused = [&](const Record& bytes) {
    ByteVector sent = bytes;
    return direct(42, sent);
  };
  EXPECT_EQ(refused(request(id).set(112, 219)), EINVAL);
  EXPECT_EQ(note(), "size 219");
  EXPECT_EQ(refused(request(id).set(120, 2)), EINVAL);
  EXPECT_EQ(refused(request(id).set(108, 1)), EINVAL);
  EXPECT_EQ(refused(request(id).set(116, 1)), EINVAL);
  EXPECT_EQ(refused(request(id).set(219, 1)), EINVAL);
  EXPECT_EQ(refused(request(id).set(99, 'x')), EINVAL);
  EXPECT_EQ(refused(request(id).set(0, 'x')), ENOENT);
  EXPECT_EQ(note(), "there is no filter xic-1002672-eth0-kelpco-sfw.2");
  EXPECT_EQ(refused(Record().zero(219)), EINVAL);
}

}  // namespace
}  // namespace TarnLab
