// flow_cost COUNT: getflows on so many flows. The kernel is a function in this program that writes
// them: TCP and UDP of both families, with translations, gateways, names of services and
// attributes, from ports that all differ. flow-cost counts what GetFWFlows spends outside of it.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "FlowQuery.h"
#include "Handlers.h"
#include "TarnFWAttrValue.h"
#include "TarnFWFlowRecords.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

std::uint32_t g_count = 0;

struct FlowAttribute {
  _FWAttrValue head;
  host64 value;
};

constexpr std::uint32_t kAttributes = 2;
constexpr std::uint32_t kAttributeBytes = kAttributes * sizeof(FlowAttribute);

/// Every third flow has attributes.
bool hasAttributes(std::uint32_t index) { return index % 3 == 0; }
std::uint32_t withAttributes() { return (g_count + 2) / 3; }

template <typename Ends>
void fillEnds(Ends& ends, std::uint32_t index) {
  for (std::uint8_t* const address : {ends.source, ends.destination}) {
    address[0] = 10;
    address[1] = static_cast<std::uint8_t>(index >> 8);
    address[sizeof ends.source - 1] = static_cast<std::uint8_t>(index);
  }
  if (index % 4 == 0) ends.translated[sizeof ends.translated - 1] = 9;
  FWFlowTransport_& transport = ends.transport;
  transport.sourcePort = static_cast<std::uint16_t>(1024 + index % 64000);
  transport.destinationPort = index % 2 == 0 ? 443 : 53;
  transport.translatedPort = 8080;
  transport.sourceTcpState = 4;
  transport.destinationTcpState = 4;
  transport.roundTripTime = index;
  transport.alg.type = 1;
  transport.alg.flowType = static_cast<std::uint8_t>(index % 5 == 0 ? 2 : 0);
  transport.alg.port = 2020;
  transport.alg.controlFlowId = index;
}

FWFlowRecord_ flowOf(std::uint32_t index) {
  FWFlowRecord_ flow{};
  flow.flowId = 0x100000000 + index;
  flow.kind = FW_FLOW_ACTIVE;
  flow.protocol = index % 8 < 5 ? 6 : 17;
  flow.ethertype = 0x800;
  flow.firstCounter = 1000 + index;
  flow.secondCounter = 100000 + index;
  flow.ruleId = 1000 + index % 50;
  flow.direction = static_cast<std::uint8_t>(1 + index % 2);
  flow.firstState = 4;
  flow.secondState = 4;
  flow.flags = FW_FLOW_ESTABLISHED;
  if (index % 3 == 1) {
    flow.family = FW_FLOW_IPV6;
    FWFlowIPv6_ ends{};
    fillEnds(ends, index);
    storeRecord(flow.addresses, ends);
  } else {
    flow.family = FW_FLOW_IPV4;
    FWFlowIPv4_ ends{};
    fillEnds(ends, index);
    storeRecord(flow.addresses, ends);
  }
  return flow;
}

std::byte* write(std::byte* to, std::uint32_t index) {
  FWFlowRecord_ flow = flowOf(index);
  flow.attributeCount = hasAttributes(index) ? kAttributes : 0;
  flow.length =
      static_cast<std::uint16_t>(sizeof flow + flow.attributeCount * sizeof(FlowAttribute));
  storeRecord(to, flow);
  to += sizeof flow;
  for (std::uint16_t key = 0; key < flow.attributeCount; ++key) {
    const FlowAttribute attribute{{key, host16(2), host32(sizeof attribute), host16(0)},
                                  key == 0 ? 5u : 771u};
    storeRecord(to, attribute);
    to += sizeof attribute;
  }
  return to;
}

}  // namespace

extern "C" {

// The linker sends the handler's call of this function here.
int __wrap_FW_Ioctl(int request, void* argument);
__attribute__((noinline)) int __wrap_FW_Ioctl(int, void* argument) {
  const auto frame = loadRecord<FWIoctlFrame>(argument);
  void* const body = reinterpret_cast<void*>(std::uintptr_t{frame.body});
  auto query = loadRecord<FWFlowQuery_>(body);
  query.active.records = g_count;
  query.active.attributes = kAttributes * withAttributes();
  query.active.attributeLength = kAttributeBytes * withAttributes();
  query.active.length = static_cast<std::uint32_t>(sizeof(FWFlowRecord_)) * g_count +
                        kAttributeBytes * withAttributes();
  storeRecord(body, query);
  if (query.operation == FW_FLOWS_READ) {
    auto* to = reinterpret_cast<std::byte*>(std::uintptr_t{query.buffer}) + kFlowBufferHead;
    for (std::uint32_t i = 0; i < g_count; ++i) to = write(to, i);
  }
  return 0;
}

fwlibhandle_* __wrap_FW_GetDefaultLibHandle();
fwlibhandle_* __wrap_FW_GetDefaultLibHandle() {
  static char handle;  // getflows only looks whether there is one
  return reinterpret_cast<fwlibhandle_*>(&handle);
}

}  // extern "C"

int main(int count, char** arguments) {
  if (count != 2) {
    std::fprintf(stderr, "usage: flow_cost COUNT\n");
    return 2;
  }
  g_count = static_cast<std::uint32_t>(std::strtoul(arguments[1], nullptr, 10));
  char command[] = "getflows";
  char option[] = "-f";
  char filter[] = "nic-1002672-eth0-kelpco-sfw.2";
  char* words[] = {command, option, filter, nullptr};
  return GetFWFlows(command, 3, words);
}
