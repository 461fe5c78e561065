// Rules beside a copy of one record, which is the floor of any of it.

#include <benchmark/benchmark.h>

#include <cstring>

#include "RuleParts.h"

using namespace TarnFirewall;

namespace {

FWRule_ record(unsigned int id) {
  FWRule_ made{};
  unsigned int written = 0;
  buildRule(id)->toMessage(&made, sizeof made, &written);
  return made;
}

void CopyARecord(benchmark::State& state) {
  const FWRule_ from = record(7);
  FWRule_ to;
  for (auto _ : state) {
    std::memcpy(static_cast<void*>(&to), &from, sizeof to);
    benchmark::DoNotOptimize(to);
  }
}
BENCHMARK(CopyARecord);

void BuildARuleAndWriteItsRecord(benchmark::State& state) {
  FWRule_ to;
  unsigned int written = 0;
  unsigned int id = 0;
  for (auto _ : state) {
    buildRule(++id)->toMessage(&to, sizeof to, &written);
    benchmark::DoNotOptimize(to);
  }
}
BENCHMARK(BuildARuleAndWriteItsRecord);

void ReadARecordAndPrintItsText(benchmark::State& state) {
  const FWRule_ from = record(7);
  for (auto _ : state) {
    std::string text = CTarnFWRuleFactory::newFromMsgBuf(&from)->toString();
    benchmark::DoNotOptimize(text);
  }
}
BENCHMARK(ReadARecordAndPrintItsText);

}  // namespace

BENCHMARK_MAIN();
