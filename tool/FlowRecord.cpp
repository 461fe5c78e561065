#include "FlowRecord.h"

#include <cstdio>
#include <ctime>
#include <string>

#include "FlowAddresses.h"
#include "FlowAttributes.h"
#include "FlowDpi.h"
#include "FlowNames.h"
#include "FlowStates.h"
#include "TarnFWFlowRecords.h"
#include "TarnFWText.h"

using namespace TarnFirewall;

namespace {

void appendTime(std::string& line, std::uint32_t seconds) {
  const auto time = static_cast<std::time_t>(seconds);
  std::tm local{};
  if (localtime_r(&time, &local) == nullptr) return;
  char text[80];
  line.append(text, std::strftime(text, sizeof text, "%a, %d %b %Y %T %z", &local));
}

void appendProtocol(std::string& line, const FWFlowRecord_& flow) {
  if (!isLayer2(flow.kind)) line += protocolName(flow.protocol);
}

void appendCounters(std::string& line, const FWFlowRecord_& flow) {
  for (const std::uint64_t counter :
       {std::uint64_t{flow.firstCounter}, std::uint64_t{flow.secondCounter},
        std::uint64_t{flow.thirdCounter}, std::uint64_t{flow.fourthCounter}}) {
    line += ' ';
    appendDecimal(line, counter);
  }
}

/// The line up to the counters. A field without a text leaves its blanks: scripts count them.
void appendFlow(std::string& line, const FWFlowRecord_& flow) {
  const std::uint64_t id = flow.flowId;
  appendHex(line, id);
  line += ' ';
  line += kindName(flow.kind);
  line += ' ';
  appendProtocol(line, flow);
  line += ' ';
  appendHex(line, std::uint16_t{flow.ethertype}, 4);
  line += ' ';
  line += directionName(flow.direction);
  line += ' ';
  appendDecimal(line, std::uint32_t{flow.ruleId});
  line += ' ';
  appendStates(line, flow);
  line += ' ';
  appendFlags(line, flow);
  line += ' ';
  appendConnection(line, flow);
  line += DpiString(id);
  appendCounters(line, flow);
}

}  // namespace

void PrintRecord(std::span<const std::byte> record, const FlowView& view) {
  if (record.data() == nullptr) {
    std::fputs("!!!Empty!!!\n", stdout);
    return;
  }
  const auto flow = loadRecord<FWFlowRecord_>(record.data());
  static std::string line;  // keeps its memory from one record to the next
  line.clear();
  appendFlow(line, flow);
  if (view.attributes) appendAttributes(line, record.subspan(sizeof flow), flow.attributeCount);
  if (view.times) {
    line += " Start: ";
    appendTime(line, flow.startTime);
    line += ", End: ";
    appendTime(line, flow.endTime);
  }
  line += '\n';
  std::fwrite(line.data(), 1, line.size(), stdout);
}
