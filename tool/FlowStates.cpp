#include "FlowStates.h"

#include <cstdio>
#include <iterator>

#include "TarnFWText.h"

using namespace TarnFirewall;

namespace {

constexpr const char* kKinds[] = {"Invalid", "Active", "Inactive", "Drop", "L2 pass", "L2 drop"};
constexpr const char* kTcpStates[] = {"CLOSED",  "LISTEN",    "SYNSENT",  "SYNRECV",
                                      "EST",     "CLOSEWAIT", "FINWAIT1", "CLOSING",
                                      "LASTACK", "FINWAIT2",  "TIMEWAIT"};

bool hasState(std::uint8_t kind) { return kind == FW_FLOW_ACTIVE || kind == FW_FLOW_INACTIVE; }

}  // namespace

bool isLayer2(std::uint8_t kind) { return kind == FW_FLOW_L2_PASS || kind == FW_FLOW_L2_DROP; }

const char* kindName(std::uint8_t kind) { return kKinds[kind < std::size(kKinds) ? kind : 0]; }

const char* directionName(std::uint8_t direction) {
  return direction == 1 ? "IN" : direction == 2 ? "OUT" : "N/A";
}

void appendStates(std::string& text, const FWFlowRecord_& flow) {
  if (!hasState(flow.kind)) return;
  appendDecimal(text, flow.firstState);
  text += ' ';
  appendDecimal(text, flow.secondState);
}

void appendFlags(std::string& text, const FWFlowRecord_& flow) {
  if (!hasState(flow.kind)) return;
  const bool blocked = (flow.flags & FW_FLOW_BLOCKED) != 0;
  const bool s = (flow.flags & FW_FLOW_S) != 0;
  const bool established = (flow.flags & FW_FLOW_ESTABLISHED) != 0;
  if (!blocked && !s && !established) return;
  text += '(';
  if (blocked) text += "blocked";
  if (blocked && (s || established)) text += ',';
  if (s) text += 'S';
  if (s && established) text += ',';
  if (established) text += "est";
  text += ')';
}

const char* TCPStateStr(std::uint16_t state, std::span<char> buffer) {
  if (state < std::size(kTcpStates)) return kTcpStates[state];
  std::snprintf(buffer.data(), buffer.size(), "other(%d)", static_cast<int>(state));
  return buffer.data();
}
