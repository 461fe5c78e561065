#include <cerrno>

#include "LabBench.h"
#include "LabDecode.h"

namespace TarnLab {
namespace {

constexpr std::size_t heapSize = 2152;

class LabMemory : public FilledLabBench {
 protected:
  /// The body as it is sent: room for so many heaps, and in each one for so many zones.
  static ByteVector body(unsigned heaps = 10, unsigned zones = 32) {
    Record bytes;
    bytes.u32(1).u32(0).u32(heaps).u32(0);
    for (std::size_t i = 0; i < 10; ++i) {
      bytes.to(16 + i * heapSize + 96).u32(zones).to(16 + (i + 1) * heapSize);
    }
    return bytes;
  }

  int read(const ByteVector& sent, unsigned status = 0xbad0001) {
    reply = sent;
    const auto address = reinterpret_cast<std::uintptr_t>(reply.data());
    frame = Record().u32(37).u32(status).u32(reply.size()).u64(address);
    return model.request(Device::firewall, 37, reinterpret_cast<std::uintptr_t>(frame.data()));
  }

  ConstBytes heap(std::size_t place) const {
    return part(ConstBytes(reply), 16 + place * heapSize, heapSize);
  }
  static ConstBytes zone(ConstBytes heap, std::size_t place) {
    return part(heap, 104 + place * 64, 64);
  }

  /// The objects of the zone of that name in any heap.
  std::uint64_t objectsOf(const std::string& name) const {
    for (std::size_t i = 0; i < get32(reply, 8); ++i) {
      for (std::size_t z = 0; z < get32(heap(i), 96); ++z) {
        if (getText(zone(heap(i), z), 4, 32) == name) return get64(zone(heap(i), z), 48);
      }
    }
    ADD_FAILURE() << "no zone " << name;
    return 0;
  }

  ByteVector frame;
};

TEST_F(LabMemory, HeapsHaveFromNoZoneToAllThatFit) {
  ASSERT_EQ(read(body()), 0) << note();
  EXPECT_EQ(get32(frame, 4), 0u) << "the status of the request is taken away";
  EXPECT_EQ(get32(reply, 8), 4u);
  EXPECT_EQ(getText(heap(0), 8, 32), "tarn-config");
  EXPECT_EQ(get32(heap(0), 40), 512u);
  EXPECT_EQ(get32(heap(0), 96), 5u);
  EXPECT_EQ(getText(heap(2), 8, 32), "tarn-buffers");
  EXPECT_EQ(get32(heap(2), 96), 32u);
  EXPECT_EQ(getText(zone(heap(2), 31), 4, 32), "buffer-2048");
  EXPECT_EQ(get32(zone(heap(2), 31), 36), 2048u);
  EXPECT_EQ(getText(heap(3), 8, 32), "tarn-texts");
  EXPECT_EQ(get32(heap(3), 96), 0u);
  EXPECT_EQ(get32(reply, 16 + 4 * heapSize + 96), 32u) << "the fifth block is as it was sent";
}

TEST_F(LabMemory, FiguresOfAHeapAgree) {
  ASSERT_EQ(read(body()), 0);
  for (std::size_t i = 0; i < 4; ++i) {
    const std::uint64_t objects = get64(heap(i), 48) - get64(heap(i), 56);
    EXPECT_EQ(objects, 10 * (i + 1) + 3);
    EXPECT_EQ(get64(heap(i), 64), objects * 480);
    EXPECT_EQ(get64(heap(i), 72), get64(heap(i), 80) * 480);
    EXPECT_GT(get64(heap(i), 80), objects);
    EXPECT_EQ(get32(heap(i), 88), 16 + 8 * i);
  }
}

TEST_F(LabMemory, ZonesCountWhatTheLabHolds) {
  ASSERT_EQ(read(body()), 0);
  EXPECT_EQ(objectsOf("filter"), 8u);
  EXPECT_EQ(objectsOf("rule"), 0u);
  EXPECT_EQ(objectsOf("names"), 5u);
  EXPECT_EQ(objectsOf("users"), 4u);
  const std::uint64_t sets = objectsOf("address set");
  ASSERT_EQ(createRuleSet("tiers", {ruleRecord(7), ruleRecord(8)}), 0u);
  ASSERT_EQ(createAddrSet("web", {ipv4("10.0.0.1"), ipv4("10.0.0.2"), ipv4("10.0.0.3")}), 0u);
  ASSERT_EQ(command(69, Record().u32(0)), 0u);
  ASSERT_EQ(read(body()), 0);
  EXPECT_EQ(objectsOf("rule set"), 1u);
  EXPECT_EQ(objectsOf("rule"), 2u);
  EXPECT_EQ(objectsOf("address set"), sets + 1);
  EXPECT_EQ(objectsOf("names"), 0u);
}

TEST_F(LabMemory, NoMoreIsWrittenThanTheRequestHasRoomFor) {
  ASSERT_EQ(read(body(2, 3)), 0);
  EXPECT_EQ(get32(reply, 8), 2u);
  EXPECT_EQ(get32(heap(0), 96), 3u);
  EXPECT_TRUE(isZero(zone(heap(0), 3)));
  EXPECT_EQ(getText(heap(2), 8, 32), "");
  ASSERT_EQ(read(body(10, 0xffffffff)), 0);
  EXPECT_EQ(get32(heap(2), 96), 32u);
  ASSERT_EQ(read(body(0)), 0);
  EXPECT_EQ(get32(reply, 8), 0u);
}

TEST_F(LabMemory, RequestsThatMakeNoSenseAreRefused) {
  EXPECT_EQ(read(body(), 0), EINVAL);
  EXPECT_EQ(note(), "frame has status 0");
  EXPECT_EQ(read(body(11)), EINVAL);
  EXPECT_EQ(note(), "room for 11 heaps");
  EXPECT_EQ(read(Record().bytes(body()).set(0, 2)), EINVAL);
  EXPECT_EQ(note(), "version 2");
  for (const std::size_t at : {4u, 15u}) {
    EXPECT_EQ(read(Record().bytes(body()).set(at, 1)), EINVAL);
    EXPECT_EQ(note(), "memory with reserved bytes set");
  }
  EXPECT_EQ(read(Record().bytes(body()).u8(0)), EINVAL);
}

TEST_F(LabMemory, TheLogShowsTheHeaps) {
  ASSERT_EQ(read(body(1, 1)), 0);
  const JournalEntry entry = journal().back();
  EXPECT_EQ(decodeRequest(entry), "firewall 37: memory(version 1, heaps 1) = ok {heaps 1}");
  EXPECT_EQ(decodeRecords(entry),
            "    tarn-config megabytes 512, allocations 5013, frees 5000, "
            "in use 6240, most in use 7200, most objects 15, overhead 16, zones 1; "
            "filter 866 x 8\n");
}

}  // namespace
}  // namespace TarnLab
