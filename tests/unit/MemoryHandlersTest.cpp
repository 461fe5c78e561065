// The handler of the data path's memory, against a scripted kernel.

#include <gtest/gtest.h>

#include <string>

#include "DirectKernel.h"
#include "FakeKernel.h"
#include "LogCapture.h"
#include "RunCommand.h"

namespace {

constexpr std::size_t kInfo = 21536;

/// Where a heap and a zone of it begin.
std::size_t heapAt(std::size_t heap) { return 16 + 2152 * heap; }
std::size_t zoneAt(std::size_t heap, std::size_t zone) { return heapAt(heap) + 96 + 64 * zone; }

Bytes info(std::uint32_t heaps) {
  Bytes bytes(kInfo);
  return put32(bytes, 8, heaps);
}

void putHeap(Bytes& bytes, std::size_t heap, const std::string& name, std::uint32_t zones) {
  const std::size_t at = heapAt(heap);
  bytes.text(at + 8, name);
  put32(put32(put32(bytes, at + 40, 64), at + 88, 16), at + 96, zones);
  const std::uint64_t values[] = {100, 40, 5000000, 6000000, 77};
  for (std::size_t i = 0; i < 5; ++i) put64(bytes, at + 48 + 8 * i, values[i]);
}

void putZone(Bytes& bytes, std::size_t heap, std::size_t zone, const std::string& name,
             std::uint32_t size, std::uint64_t inUse, std::uint64_t failures) {
  const std::size_t at = zoneAt(heap, zone);
  put32(bytes.text(at + 12, name), at + 44, size);
  put64(put64(bytes, at + 56, inUse), at + 64, failures);
}

class MemoryKernel : public DirectKernel {
 public:
  explicit MemoryKernel(Bytes answer, std::uint32_t status = 0)
      : answer_(std::move(answer)), status_(status) {
    on(37, [this](std::uint8_t* body) {
      std::memcpy(body, answer_.data(), answer_.size());
      return status_;
    });
  }

 private:
  Bytes answer_;
  std::uint32_t status_;
};

const std::string kHeapOfNothing =
    "    dynamic: objInUse = 0, memInUse = 0, hwmMem = 0, hwmObj = 0, alloc = 0, free = 0\n"
    "    Total Heap Mem In Use = 0 bytes (0 MB)\n";
const std::string kNothing = "Total TARN Mem In Use = 0 bytes + 0 overhead = 0 (0 MB)\n";

}  // namespace

TEST(GetMeminfo, AddsUpHeapsAndZones) {
  Bytes answer = info(2);
  putHeap(answer, 0, "state", 2);
  putZone(answer, 0, 0, "flow", 512, 2048, 0);
  putZone(answer, 0, 1, "a-name-that-is-longer", 2147483647, 1, 3);
  putHeap(answer, 1, "rules", 0);
  MemoryKernel kernel(answer);
  EXPECT_EQ(
      runCommand({"getmeminfo"}),
      (CommandResult{
          0,
          "Heap: state, max 64 MB\n"
          "    zone  0: flow             objSize =  512, inUse =             2048, numFail = 0,"
          " totalMem = 1048576\n"
          "    zone  1: a-name-that-is-longer objSize = 2147483647, inUse =                1,"
          " numFail = 3, totalMem = 2147483647\n"
          "    dynamic: objInUse = 60, memInUse = 5000000, hwmMem = 6000000, hwmObj = 77,"
          " alloc = 100, free = 40\n"
          "    Total Heap Mem In Use = 2153532223 bytes (2053 MB)\n"
          "Heap: rules, max 64 MB\n"
          "    dynamic: objInUse = 60, memInUse = 5000000, hwmMem = 6000000, hwmObj = 77,"
          " alloc = 100, free = 40\n"
          "    Total Heap Mem In Use = 5000000 bytes (4 MB)\n"
          "Total TARN Mem In Use = 2158532223 bytes + 1920 overhead = 2158534143 (2058 MB)\n",
          ""}));
  ASSERT_EQ(kernel.requests().size(), 1u);
  EXPECT_EQ(kernel.requests()[0].status, 0x0bad0001u);
  Bytes request(kInfo);
  request.at(0, {1}).at(8, {10});
  for (std::size_t heap = 0; heap < 10; ++heap) request.at(heapAt(heap) + 96, {32});
  EXPECT_EQ(kernel.requests()[0].body, request);
}

TEST(GetMeminfo, TheLastZoneEndsWithItsBlock) {
  Bytes answer = info(10);
  answer.text(heapAt(9) + 8, std::string(32, 'h'));
  put32(answer, heapAt(9) + 96, 32);
  putZone(answer, 9, 31, std::string(32, 'z'), 2, 3, ~0ull);
  const MemoryKernel kernel(answer);
  const std::string out = runCommand({"getmeminfo"}).out;
  EXPECT_NE(out.find("Heap: " + std::string(32, 'h') + ", max 0 MB\n"), std::string::npos);
  EXPECT_NE(out.find("    zone 31: " + std::string(32, 'z') +
                     " objSize =    2, inUse =                3, numFail = -1, totalMem = 6\n" +
                     "    dynamic: "),
            std::string::npos);
  EXPECT_NE(out.find("Total TARN Mem In Use = 6 bytes + 0 overhead = 6 (0 MB)\n"),
            std::string::npos);
}

TEST(GetMeminfo, CountsAreBoundedByTheRecord) {
  const LogCapture log;
  Bytes answer(kInfo, 0xff);
  const MemoryKernel kernel(answer);
  const CommandResult result = runCommand({"getmeminfo"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "");
  EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 10 * (3 + 32) + 1);
  EXPECT_EQ(log.lines().size(), 11u);
  // One zone: (2^32 - 1) * (2^64 - 1), which is 1 - 2^32.
  EXPECT_NE(result.out.find("objSize =   -1, inUse =               -1, numFail = -1,"
                            " totalMem = -4294967295\n"),
            std::string::npos);
}

TEST(GetMeminfo, WhatIsThereIsShownWhenTheRequestFails) {
  // A status of the kernel, with an answer.
  const MemoryKernel refusing(info(0), 7);
  EXPECT_EQ(runCommand({"getmeminfo"}),
            (CommandResult{0, kNothing, "ERROR: ioctl failed to get meminfo 7\n"}));
}

TEST(GetMeminfo, ARequestThatIsNotAnsweredShowsTheRoomForIt) {
  const LogCapture log;
  const DirectKernel kernel;
  const CommandResult result = runCommand({"getmeminfo"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.err, "ERROR: ioctl failed to get meminfo 195887105\n");
  EXPECT_EQ(std::count(result.out.begin(), result.out.end(), '\n'), 10 * (3 + 32) + 1);
  EXPECT_EQ(result.out.substr(result.out.size() - kNothing.size()), kNothing);
}

TEST(GetMeminfo, AHeapWithoutZonesHasItsSums) {
  Bytes answer = info(1);
  answer.text(heapAt(0) + 8, "empty");
  const MemoryKernel kernel(answer);
  EXPECT_EQ(runCommand({"getmeminfo"}),
            (CommandResult{0, "Heap: empty, max 0 MB\n" + kHeapOfNothing + kNothing, ""}));
}
