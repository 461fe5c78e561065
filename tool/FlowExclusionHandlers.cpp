#include <strings.h>

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "Devices.h"
#include "FlowExclusionText.h"
#include "HandlerForm.h"
#include "Handlers.h"
#include "Records.h"
#include "TarnFWLog.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

/// Not `std::fprintf`, whose address the loader would look up at each start of the program.
__attribute__((format(printf, 2, 3))) int print(std::FILE* stream, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const int result = std::vfprintf(stream, format, arguments);
  va_end(arguments);
  return result;
}

constexpr char kSetUsage[] =
    "Set flow exclusion setting of a filter.\n\n" USAGE_OPTIONS
    "    -g <on|off> : collecting flows\n"
    "    -l <on|off> : collecting non-IP L2 flows\n"
    "    -2 <on|off> : collecting L2 flows\n"
    "    -d <on|off> : collecting flows of dropped packets\n"
    "    -a <on|off> : aggregate source address\n"
    "    -b <on|off> : aggregate dest address\n"
    "    -s <on|off> : aggregate source port\n"
    "    -t <on|off> : aggregate dest port\n"
    "    -p <on|off> : aggregate protocol\n" USAGE_FILTER
    "    -F <definition> : one flow exclusion definition, repeatable:\n"
    "                  smac|dmac|ethertype|sip|dip|protocol|sport|dport|svnic|dvnic\n" USAGE_HELP;

constexpr char kGetUsage[] =
    "Get current flow exclusion setting of a filter.\n\n" USAGE_OPTIONS USAGE_FILTER
    "    -l          : print setting in long format\n" USAGE_HELP;

constexpr std::uint32_t kRecordSize = sizeof(FWFlowExclusion_);

/// Room for as many definitions as the kernel holds; null after an error line.
Records<FWFlowExclusion_> makeExclusions() {
  Records<FWFlowExclusion_> records = makeRecords<FWFlowExclusion_>(kMaxFlowExclusions);
  if (records == nullptr)
    error("ERROR: no memory for %d flow exclusion records\n", static_cast<int>(kMaxFlowExclusions));
  return records;
}

/// An option that takes "on" or "off".
struct Switch {
  char letter;
  bool isGlobal;  // of what the host collects; it stands for the bit when it is off
  std::uint32_t flag;
  const char* text;  // printed when the flag is set
};

constexpr Switch kSwitches[] = {
    {'g', true, FW_NO_FLOWS, "turn off flow collection\n"},
    {'l', true, FW_NO_NON_IP_L2_FLOWS, "turn off non-IP L2 flow collection\n"},
    {'2', true, FW_NO_L2_FLOWS, "turn off all L2 flow collection\n"},
    {'d', true, FW_NO_DROP_FLOWS, "turn off drop packets flow collection\n"},
    {'a', false, FW_AGGREGATE_SOURCE_ADDRESS, "aggregate source address\n"},
    {'b', false, FW_AGGREGATE_DESTINATION_ADDRESS, "aggregate dest address\n"},
    {'s', false, FW_AGGREGATE_SOURCE_PORT, "aggregate source port\n"},
    {'t', false, FW_AGGREGATE_DESTINATION_PORT, "aggregate dest port\n"},
    {'p', false, FW_AGGREGATE_PROTOCOL, "aggregate protocol\n"},
};

/// What the options of `setflowexclusion` ask for.
class Exclusion {
 public:
  explicit Exclusion(FWFlowExclusion_* records) : records_(records) {}

  OwnOption switchOption(const Switch& one) {
    return {one.letter,
            [this, &one](const char* value, const Target&) { return takeSwitch(one, value); }};
  }

  int takeName(const char* value) {
    if (std::strlen(value) > kMaxName) return error("ERROR: invalid filter %s.\n", value);
    name_ = value;
    return kGoOn;
  }

  int takeDefinition(const char* value) {
    if (count_ == kMaxFlowExclusions) {
      std::printf("maximal number of flow exclusion reached\n");
      return kGoOn;
    }
    FWFlowExclusion_& record = records_[count_++];
    char* const copy = copyOf(value);
    if (copy == nullptr) {
      // The empty record goes out with the others.
      error("ERROR: bad flow exclusion spec: %s\n", value);
      return kGoOn;
    }
    return ParseFlowExclusion(copy, record) ? kGoOn : 1;
  }

  int check(const Target& target) const {
    if (name_[0] == '\0' || !setsGlobal_) return kGoOn;
    return target.usage.error("ERROR: cannot combine global flags with filter\n");
  }

  /// What the kernel makes of it is not looked at: hosts whose kernel does not have the request
  /// depend on the 0.
  int send() const {
    FWFlowExclusionQuery_ query{};
    Strncpy(query.name, name_, sizeof query.name);
    query.flags = flags();
    query.length = count_ * kRecordSize;
    query.buffer = addressOf(records_);
    directRequest(kFirewall, FW_REQUEST_SET_FLOW_EXCLUSION, query);
    return 0;
  }

 private:
  static constexpr std::size_t kSwitchCount = std::size(kSwitches);

  int takeSwitch(const Switch& one, const char* value) {
    const bool on = strcasecmp(value, "on") == 0;
    if (!on && strcasecmp(value, "off") != 0) return kNotTaken;
    bool& set = set_[&one - kSwitches];
    set = on != one.isGlobal;
    if (set) std::fputs(one.text, stdout);
    if (one.isGlobal) setsGlobal_ = true;
    return kGoOn;
  }

  std::uint32_t flags() const {
    std::uint32_t flags = 0;
    for (std::size_t i = 0; i < kSwitchCount; ++i)
      if (set_[i]) flags |= kSwitches[i].flag;
    return flags;
  }

  /// A copy that the next one may overwrite; null when there is no memory for it.
  char* copyOf(const char* text) {
    const std::size_t size = std::strlen(text) + 1;
    if (size <= copySize_) return static_cast<char*>(std::memcpy(copy_.get(), text, size));
    copy_.reset(strdup(text));
    copySize_ = copy_ != nullptr ? size : 0;
    return copy_.get();
  }

  FWFlowExclusion_* records_;
  std::uint32_t count_ = 0;
  std::unique_ptr<char, FreeMemory> copy_;
  std::size_t copySize_ = 0;
  const char* name_ = "";
  bool setsGlobal_ = false;
  bool set_[kSwitchCount] = {};  // the last word of each switch counts
};

/// What the host collects.
void printCollection(std::uint32_t flags) {
  const auto word = [&](std::uint32_t flag) { return (flags & flag) != 0 ? "off" : "on"; };
  std::printf("Global flow collection      : %s\n", word(FW_NO_FLOWS));
  std::printf("non-IP L2 flow collection   : %s\n", word(FW_NO_NON_IP_L2_FLOWS));
  std::printf("L2 flow collection          : %s\n", word(FW_NO_L2_FLOWS));
  std::printf("Drop packet flow collection : %s\n", word(FW_NO_DROP_FLOWS));
}

/// A request that fails reports no definitions.
int showExclusion(const char* name, bool isLong, FWFlowExclusion_* records) {
  FWFlowExclusionQuery_ query{};
  Strncpy(query.name, name, sizeof query.name);
  query.length = kMaxFlowExclusions * kRecordSize;
  query.buffer = addressOf(records);
  if (directRequest(kFirewall, FW_REQUEST_GET_FLOW_EXCLUSION, query) != 0) query = {};

  if (name[0] == '\0') printCollection(query.flags);
  std::uint32_t count = query.length / kRecordSize;
  std::printf("Flow exclusion count        : %d\n", static_cast<int>(count));
  if (count > kMaxFlowExclusions) {
    TARNFW_WARNING("%u flow exclusions returned for room of %u\n", count, kMaxFlowExclusions);
    count = kMaxFlowExclusions;
  }
  if (isLong) PrintLongFlowExclusionHeader(print, stdout);
  for (std::uint32_t i = 0; i < count; ++i) {
    if (isLong) {
      PrintLongFlowExclusion(print, stdout, records[i]);
    } else {
      std::printf("%3d: ", static_cast<int>(i));
      PrintFlowExclusion(print, stdout, records[i]);
    }
  }
  return 0;
}

}  // namespace

int SetFlowExclusion(const char* cmd, int argc, char** argv) {
  const Records<FWFlowExclusion_> records = makeExclusions();
  if (records == nullptr) return 1;
  Exclusion exclusion(records.get());
  return onHost(
      cmd, argc, argv,
      {.usage = kSetUsage,
       .letters = "h2:a:b:d:f:F:g:l:p:s:t:",
       // The one that is repeated stands first, where it is found at once.
       .own = {{'F',
                [&](const char* value, const Target&) { return exclusion.takeDefinition(value); }},
               {'f', [&](const char* value, const Target&) { return exclusion.takeName(value); }},
               exclusion.switchOption(kSwitches[0]),
               exclusion.switchOption(kSwitches[1]),
               exclusion.switchOption(kSwitches[2]),
               exclusion.switchOption(kSwitches[3]),
               exclusion.switchOption(kSwitches[4]),
               exclusion.switchOption(kSwitches[5]),
               exclusion.switchOption(kSwitches[6]),
               exclusion.switchOption(kSwitches[7]),
               exclusion.switchOption(kSwitches[8])},
       .check = [&](const Target& target) { return exclusion.check(target); }},
      [&](const Target&) { return exclusion.send(); });
}

int GetFlowExclusion(const char* cmd, int argc, char** argv) {
  const Records<FWFlowExclusion_> records = makeExclusions();
  if (records == nullptr) return 1;
  const char* name = "";
  bool isLong = false;
  return onHost(
      cmd, argc, argv,
      {.usage = kGetUsage,
       .letters = "hf:l",
       .own = {{'f', &name, kMaxName, "ERROR: invalid filter name %s\n"}, {'l', &isLong}}},
      [&](const Target&) { return showExclusion(name, isLong, records.get()); });
}
