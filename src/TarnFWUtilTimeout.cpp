#define TARNFW_SOURCE "TarnFWUtil.cpp"

#include "TarnFWUtilTimeout.h"

#include <strings.h>

#include "TarnFWLog.h"
#include "TarnFWUtilNumber.h"
#include "TarnFWUtilText.h"

using namespace TarnFirewall;

const char* const g_tarnfw_timeout_name[kTimeouts] = {
    "dfw.tcp.first_packet",  "dfw.tcp.opening",      "dfw.tcp.established",
    "dfw.tcp.closing",       "dfw.tcp.fin_wait",     "dfw.tcp.closed",
    "dfw.udp.first_packet",  "dfw.udp.single",       "dfw.udp.multiple",
    "dfw.icmp.first_packet", "dfw.icmp.error_reply", "dfw.other.first_packet",
    "dfw.other.single",      "dfw.other.multiple",   "dfw.ip.frag",
    "dfw.interval",          "dfw.adaptive_start",   "dfw.adaptive_end",
    "dfw.src_node",          "dfw.ts_diff",          "dfw.invalid_state",
    "dfw.invalid_l7",
};

unsigned int TimeoutName2ID(const char* name) {
  if (name == nullptr) return kTimeoutNotFound;
  for (unsigned int i = 0; i < kTimeouts; ++i) {
    if (strcasecmp(name, g_tarnfw_timeout_name[i]) == 0) return i;
  }
  return kTimeoutNotFound;
}

bool ParseTimeoutList(const char* text, std::uint32_t* values, unsigned int count) {
  if (text == nullptr || values == nullptr) return false;
  TextWords words(text, Separators(" \t,:"));
  // The empty line after each of these lines is part of what readers of the log match.
  if (!words) {
    TARNFW_WARNING("out of memory\n\n");
    return false;
  }
  for (unsigned int i = 0; i < count; ++i) {
    const char* const word = words.next();
    if (word == nullptr) {
      TARNFW_WARNING("missing %d timeout values\n\n", static_cast<int>(count - i));
      return false;
    }
    long value = 0;
    if (!Str2Long(word, 10, &value) || value < 0) {
      TARNFW_WARNING("bad timeout value: %s\n\n", word);
      return false;
    }
    values[i] = static_cast<std::uint32_t>(value);
  }
  if (words.next() != nullptr) {
    TARNFW_WARNING("too many timeout values\n\n");
    return false;
  }
  return true;
}
