#include <algorithm>
#include <cstdio>

#include "Devices.h"
#include "HandlerForm.h"
#include "Handlers.h"
#include "MemoryRecords.h"
#include "TarnFWLog.h"

using namespace TarnFirewall;

namespace {

constexpr char kUsage[] = "Get current memory usage data of datapath.\n\n" USAGE_OPTIONS USAGE_HELP;

/// The kernel's counters wrap around, and so do sums and products of them.
long counter(std::uint64_t value) { return static_cast<long>(value); }
long megabytes(std::uint64_t bytes) { return counter(bytes >> 20); }

/// A count of the reply, which holds no more than `most`.
unsigned int bounded(const char* what, std::uint32_t count, unsigned int most) {
  if (count > most) TARNFW_WARNING("%u %s returned for room of %u\n", count, what, most);
  return std::min<std::uint32_t>(count, most);
}

/// Prints a zone and returns the bytes of its objects.
std::uint64_t showZone(unsigned int number, const FWMemZone_& zone) {
  const std::uint32_t size = zone.objectSize;
  const std::uint64_t inUse = zone.objectsInUse;
  const std::uint64_t total = size * inUse;
  std::printf("    zone %2d: %-16s objSize = %4d, inUse = %16ld, numFail = %ld, totalMem = %ld\n",
              static_cast<int>(number), fieldText(zone.name).c_str(), static_cast<int>(size),
              counter(inUse), counter(zone.failures), counter(total));
  return total;
}

struct MemoryUse {
  std::uint64_t bytes = 0;
  std::uint64_t overhead = 0;
};

/// Prints a heap and adds what it uses.
void showHeap(const FWMemHeap_& heap, MemoryUse* used) {
  std::printf("Heap: %s, max %d MB\n", fieldText(heap.name).c_str(),
              static_cast<int>(heap.maxMegabytes));
  std::uint64_t bytes = heap.memoryInUse;
  const unsigned int zones = bounded("zones", heap.zoneCount, kMemZones);
  for (unsigned int i = 0; i < zones; ++i) bytes += showZone(i, heap.zones[i]);
  const std::uint64_t objects = heap.allocations - heap.frees;
  std::printf(
      "    dynamic: objInUse = %ld, memInUse = %ld, hwmMem = %ld, hwmObj = %ld, alloc = %ld,"
      " free = %ld\n",
      counter(objects), counter(heap.memoryInUse), counter(heap.memoryHighWater),
      counter(heap.objectHighWater), counter(heap.allocations), counter(heap.frees));
  std::printf("    Total Heap Mem In Use = %ld bytes (%ld MB)\n", counter(bytes), megabytes(bytes));
  used->bytes += bytes;
  used->overhead += objects * heap.overhead;
}

int showMemory() {
  FWMemInfo_ info{};
  info.version = 1;
  info.heapCount = kMemHeaps;
  for (FWMemHeap_& heap : info.heaps) heap.zoneCount = kMemZones;
  std::uint32_t status = kNotAnswered;
  directRequest(kFirewall, FW_REQUEST_MEMORY, info, &status);
  // What is there is shown all the same, and the command succeeds: collectors read on.
  if (status != 0)
    std::fprintf(stderr, "ERROR: ioctl failed to get meminfo %d\n", static_cast<int>(status));

  MemoryUse used;
  const unsigned int heaps = bounded("heaps", info.heapCount, kMemHeaps);
  for (unsigned int i = 0; i < heaps; ++i) showHeap(info.heaps[i], &used);
  const std::uint64_t all = used.bytes + used.overhead;
  std::printf("Total TARN Mem In Use = %ld bytes + %ld overhead = %ld (%ld MB)\n",
              counter(used.bytes), counter(used.overhead), counter(all), megabytes(all));
  return 0;
}

}  // namespace

int GetMeminfoData(const char* cmd, int argc, char** argv) {
  return onHost(cmd, argc, argv, {.usage = kUsage, .letters = "h"},
                [](const Target&) { return showMemory(); });
}
