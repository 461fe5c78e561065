#include <algorithm>
#include <cstdio>
#include <cstring>

#include "Devices.h"
#include "HandlerForm.h"
#include "Handlers.h"
#include "StatisticsRecords.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

constexpr char kUsage[] = "retrieve RTT info for a flow.\n\n" USAGE_OPTIONS USAGE_FILTER
                          "    -i <flowid> : flow id, hexadecimal, as getflows prints it\n"
                          "    -r          : reset RTT average\n" USAGE_HELP;

constexpr option kWords[] = {kFilterWord,
                             {"flowid", required_argument, nullptr, 'i'},
                             {"reset", no_argument, nullptr, 'r'},
                             kLastWord};

constexpr std::uint32_t kFound = 1;

/// A kernel that has no figures yet divides by 0, which makes 0.
std::uint64_t quotient(std::uint64_t value, std::uint64_t by) { return by == 0 ? 0 : value / by; }

/// What one direction has measured.
struct Direction {
  std::uint32_t sequence;
  std::uint64_t ticks;
  std::uint32_t samples;      // of the present window
  std::uint64_t windowTicks;  // of these samples
  std::uint64_t averageTicks;
};

Direction outOf(const FWRtt_& rtt) {
  return {rtt.outSequence, rtt.outTicks, rtt.outWindowSamples, rtt.outWindowTicks,
          rtt.outAverageTicks};
}

Direction inOf(const FWRtt_& rtt) {
  return {rtt.inSequence, rtt.inTicks, rtt.inWindowSamples, rtt.inWindowTicks, rtt.inAverageTicks};
}

void showDirection(const char* title, const Direction& one, std::uint64_t cycles) {
  const unsigned long window = one.windowTicks;
  const unsigned long windowTime = quotient(quotient(window, one.samples), cycles);
  const unsigned long average = one.averageTicks;
  std::printf("%s seqno = %u\n", title, one.sequence);
  std::printf("                    ticks = %lu\n", static_cast<unsigned long>(one.ticks));
  std::printf("                    win_num_samples = %u\n", one.samples);
  std::printf("                    win_total_ticks = %lu (%lu us)\n", window, windowTime);
  std::printf("                    tot_win_avg_ticks = %lu (%lu us)\n", average,
              static_cast<unsigned long>(quotient(average, cycles)));
}

/// The time of a direction: its windows so far weigh more than the present one. The kernel
/// subtracts in 32 bits, and so does this.
unsigned int timeOf(const Direction& one, std::uint64_t weight, std::uint64_t cycles) {
  const std::uint32_t ofAverage = static_cast<std::uint32_t>(weight) - one.samples;
  const std::uint64_t ticks = ofAverage * one.averageTicks + one.windowTicks;
  return static_cast<unsigned int>(quotient(quotient(ticks, weight), cycles));
}

void showRoundTrips(const FWRtt_& rtt) {
  const Direction out = outOf(rtt);
  const Direction in = inOf(rtt);
  const std::uint64_t cycles = rtt.cyclesPerMicrosecond;
  const std::uint64_t weight =
      (std::uint64_t{rtt.windowWeight} + rtt.accumulatedWeight) * rtt.windowSamples;
  showDirection("VM to switch (OUT):", out, cycles);
  showDirection("switch to VM: (IN):", in, cycles);
  std::printf("cyc_per_usec = %lu\n", static_cast<unsigned long>(cycles));
  std::printf("RTT = %u (outRTT = %u, inRTT = %u)\n", rtt.roundTripTime + 0u,
              timeOf(out, weight, cycles), timeOf(in, weight, cycles));
  std::printf("win samples = %u, win_weight = %u, accum_weight = %u\n", rtt.windowSamples + 0u,
              rtt.windowWeight + 0u, rtt.accumulatedWeight + 0u);
  std::printf("buf_entries = %u, len = %u\n", rtt.bufferEntries + 0u, rtt.length + 0u);
}

}  // namespace

int GetRTT(const char* cmd, int argc, char** argv) {
  const char* filter = nullptr;
  unsigned long flow = 0;
  bool hasFlow = false;
  bool reset = false;
  // A text that is no number names no flow.
  const auto takeFlow = [&](const char* value, const Target&) {
    hasFlow = Str2ULong(value, 16, &flow);
    return kGoOn;
  };
  const auto bothGiven = [&](const Target& target) {
    if (filter == nullptr) return target.usage.error("%s", kFilterMissingPlain);
    if (!hasFlow) return target.usage.error("ERROR: flowid is missing\n");
    return kGoOn;
  };
  // The name goes to the kernel as far as its field takes it.
  return onHost(cmd, argc, argv,
                {.usage = kUsage,
                 .letters = "f:i:rh",
                 .words = kWords,
                 .own = {{'f', &filter}, {'i', takeFlow}, {'r', &reset}},
                 .check = bothGiven},
                [&](const Target&) {
                  FWRtt_ rtt{};
                  std::memcpy(rtt.name, filter, std::min(std::strlen(filter), kMaxName));
                  rtt.flowId = flow;
                  rtt.size = sizeof rtt;
                  rtt.reset = reset ? 1 : 0;
                  directRequest(kFirewall, FW_REQUEST_ROUND_TRIP, rtt);
                  if (rtt.version != kFound) {
                    std::printf("Unable to find flow, ver = %d\n", static_cast<int>(rtt.version));
                    return 1;
                  }
                  showRoundTrips(rtt);
                  return 0;
                });
}
