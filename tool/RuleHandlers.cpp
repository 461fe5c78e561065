#include <strings.h>

#include <cstdio>
#include <cstring>

#include "HandlerForm.h"
#include "Handlers.h"
#include "Records.h"
#include "TarnFWBootTime.h"
#include "TarnFWRuleRecord.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

constexpr std::size_t kMaxRuleSetName = 63;

/// A rule's line: blanks, then its text, with room for the NUL. Rules of a longer text end the
/// list.
constexpr std::size_t kIndent = 2;
constexpr unsigned int kRuleText = 512;

/// Kinds of rules, as the kernel numbers them.
enum RuleKind : unsigned int { kFilterRules = 0, kSnatRules = 1, kDnatRules = 2 };

/// Where rule sets are read from.
struct RuleSource {
  fwlibhandle_* handle;
  const dvs_port_* port;
  bool verbose;
  bool pretty;
};

/// True for the status of a rule set that is being purged, which is no error in any display.
bool isPurged(const RuleSource& source, const FWRuleSetID_t& ruleSet, FWStatus_t status) {
  if (status != FW_STATUS_BAD_STATE) return false;
  if (source.verbose) std::printf("DEBUG: ruleset %s is being purged\n", ruleSet.text);
  return true;
}

/// One rule by its index; the record is set when one was returned. Its number in what is shown is
/// its place and not what the kernel says.
FWStatus_t fetchRule(const RuleSource& source, const FWRuleSetID_t& ruleSet, unsigned int kind,
                     unsigned int index, FWRule_* rule, unsigned int* returned) {
  *returned = 0;
  const FWStatus_t status = FW_GetRuleOfRuleSet(source.handle, source.port, nullptr, kind, 1, index,
                                                &ruleSet, nullptr, rule, returned);
  rule->position = static_cast<std::int32_t>(index + 1);
  return status;
}

int conversionFailed(FWStatus_t status) {
  return error("ERROR:   rule conversion failed %s\n", FW_StatusToString(status));
}

int GetSingleRuleSetByType(const RuleSource& source, unsigned int kind,
                           const FWRuleSetID_t& ruleSet) {
  unsigned int count = 0;
  FWStatus_t status =
      FW_GetRuleCountOfRuleSet(source.handle, source.port, nullptr, &ruleSet, kind, &count);
  if (isPurged(source, ruleSet, status)) return 0;
  if (status != FW_STATUS_OK) {
    return error("ERROR: failed to get %d rule count for ruleset %s: %s\n", static_cast<int>(kind),
                 ruleSet.text, FW_StatusToString(status));
  }
  char line[kIndent + kRuleText] = {' ', ' '};
  for (unsigned int i = 0; i < count; ++i) {
    FWRule_ rule;
    unsigned int returned;
    status = fetchRule(source, ruleSet, kind, i, &rule, &returned);
    if (isPurged(source, ruleSet, status)) return 0;
    if (status != FW_STATUS_OK || returned != 1) {
      return error("ERROR: failed to get %d rule in ruleset %s: %s\n", static_cast<int>(kind),
                   ruleSet.text, FW_StatusToString(status));
    }
    status = FW_GetRuleString(&rule, 1, line + kIndent, kRuleText, source.pretty);
    if (status != FW_STATUS_OK) return conversionFailed(status);
    // Without the stream's lock: a command has one thread.
    fputs_unlocked(line, stdout);
    putc_unlocked('\n', stdout);
  }
  return 0;
}

int GetSingleRuleSetStatByType(const RuleSource& source, unsigned int kind,
                               const FWRuleSetID_t& ruleSet) {
  unsigned int count = 0;
  FWStatus_t status =
      FW_GetRuleCountOfRuleSet(source.handle, source.port, nullptr, &ruleSet, kind, &count);
  if (isPurged(source, ruleSet, status)) return 0;
  if (status != FW_STATUS_OK) {
    return error("ERROR: failed to get %d rule count: %s\n", static_cast<int>(kind),
                 FW_StatusToString(status));
  }
  if (count == 0) return 0;
  const auto stats = makeRecords<FWRuleStat_>(count);
  if (stats == nullptr) {
    return error("ERROR: no memory for getting %u %d rule stats\n", count, static_cast<int>(kind));
  }
  unsigned int returned = 0;
  FW_SetLibPrettyPrinting(pretty_printing, stdout);
  status = FW_GetStatOfRuleSet(source.handle, source.port, nullptr, kind, count, 0, &ruleSet,
                               nullptr, stats.get(), &returned);
  FW_SetLibPrettyPrinting(nullptr, nullptr);
  if (isPurged(source, ruleSet, status)) return 0;
  if (status == FW_STATUS_OK) return 0;
  return error("ERROR: failed to get %d rule stat: %s\n", static_cast<int>(kind),
               FW_StatusToString(status));
}

// --- What is shown of one rule set

void showRules(const RuleSource& source, const FWRuleSetID_t& ruleSet) {
  std::printf("ruleset %s {\n", ruleSet.text);
  unsigned int count = 0;
  std::uint64_t realized = 0;
  std::uint64_t generation = 0;
  if (FW_GetRuleSetInfo(source.handle, source.port, nullptr, &ruleSet, &count, &realized,
                        &generation) == FW_STATUS_OK) {
    const FWLocalTime_ time = bootsec2local(realized);
    std::printf("  # generation number: %llu\n", static_cast<unsigned long long>(generation));
    std::printf("  # realization time : %04d-%02d-%02dT%02d:%02d:%02d\n", time.year, time.month,
                time.day, time.hour, time.minute, time.second);
  }
  for (const RuleKind kind : {kDnatRules, kFilterRules, kSnatRules}) {
    if (GetSingleRuleSetByType(source, kind, ruleSet) != 0) break;
  }
  std::printf("}\n\n");
}

/// The kinds stand in another order than in the list of rules, and no frame is around them: scripts
/// that read the statistics expect both.
void showStatistics(const RuleSource& source, const FWRuleSetID_t& ruleSet) {
  for (const RuleKind kind : {kSnatRules, kFilterRules, kDnatRules}) {
    if (GetSingleRuleSetStatByType(source, kind, ruleSet) != 0) break;
  }
}

void showInfo(const RuleSource& source, const FWRuleSetID_t& ruleSet) {
  std::printf("ruleset %s {\n", ruleSet.text);
  unsigned int count = 0;
  std::uint64_t realized = 0;
  std::uint64_t generation = 0;
  FW_SetLibPrettyPrinting(pretty_printing, stdout);
  const FWStatus_t status = FW_GetRuleSetInfo(source.handle, source.port, nullptr, &ruleSet, &count,
                                              &realized, &generation);
  FW_SetLibPrettyPrinting(nullptr, nullptr);
  if (status != FW_STATUS_OK && !isPurged(source, ruleSet, status)) {
    error("ERROR: failed to get info of ruleset %s: %s\n", ruleSet.text, FW_StatusToString(status));
  }
  std::printf("}\n");
}

// --- Load balancing

/// Bit 6 of the byte marks load-balancing options; the highest bit of a pool option beside it is
/// never set in an action that has them.
bool isLoadBalancing(const FWRule_& rule) { return (rule.action.present & 0x60) == 0x40; }

/// What is left of the persistence of a load-balancing rule.
struct Remainder {
  std::uint64_t minutes;
  std::uint64_t seconds;
};

Remainder remainderOf(const FWDlbRule_& state) {
  if (state.flows != 0) return {state.persistTimeout, 0};
  const std::uint64_t timeout = std::uint64_t{60} * state.persistTimeout;
  // Unsigned 32 bits like the kernel's clock, which may have wrapped around in between.
  const std::uint32_t elapsed = std::uint32_t{state.currentTime} - std::uint32_t{state.lastUse};
  const std::uint64_t left = elapsed < timeout ? timeout - elapsed : 0;
  return {left / 60, left % 60};
}

void printState(const FWDlbRule_& state) {
  std::printf("      num flows = %d", static_cast<int>(state.flows));
  if (state.persistTimeout != 0) {
    std::printf(", persist timeout = %dm", static_cast<int>(state.persistTimeout));
  }
  const Remainder left = remainderOf(state);
  std::printf(", timeout remaining = %d:%02ds", static_cast<int>(left.minutes),
              static_cast<int>(left.seconds));
  if (left.minutes != 0 || left.seconds != 0 || state.flows != 0) {
    // The type of a single address is also its family: 1 IPv4, 2 IPv6.
    const auto address = loadRecord<FWAddress_>(state.address);
    char text[64] = {};
    if ((address.type == FW_ADDRESS_IPV4 || address.type == FW_ADDRESS_IPV6) &&
        FW_GetAddressString(&address, 1, text, sizeof text) == FW_STATUS_OK) {
      std::printf(", persist addr = %s", text);
    }
  }
  std::printf("\n");
}

/// A failure after the opening line leaves the brace open: scripts that read this output expect no
/// closing line then.
void showLoadBalancing(const RuleSource& source, const FWRuleSetID_t& ruleSet) {
  unsigned int count = 0;
  FWStatus_t status =
      FW_GetRuleCountOfRuleSet(source.handle, source.port, nullptr, &ruleSet, kDnatRules, &count);
  if (isPurged(source, ruleSet, status)) return;
  if (status != FW_STATUS_OK) {
    error("ERROR: failed to get dnat rule count for ruleset %s: %s\n", ruleSet.text,
          FW_StatusToString(status));
    return;
  }
  std::printf("ruleset %s {\n", ruleSet.text);
  bool shown = false;
  for (unsigned int i = 0; i < count; ++i) {
    FWRule_ rule;
    unsigned int returned;
    status = fetchRule(source, ruleSet, kDnatRules, i, &rule, &returned);
    if (isPurged(source, ruleSet, status)) return;
    if (status != FW_STATUS_OK || returned != 1) {
      error("ERROR: failed to get dnat rule in ruleset %s: %s\n", ruleSet.text,
            FW_StatusToString(status));
      return;
    }
    if (!isLoadBalancing(rule)) continue;
    char text[256] = {};
    status = FW_GetRuleString(&rule, 1, text, sizeof text, 0);
    if (status != FW_STATUS_OK) {
      conversionFailed(status);
      return;
    }
    std::printf("  %s\n", text);
    shown = true;

    FWDlbRule_ state{};
    returned = 0;
    status = FW_GetDlbOfRuleSet(source.handle, source.port, nullptr, kDnatRules, 1, i, &ruleSet,
                                nullptr, &state, &returned);
    if (status != FW_STATUS_OK || returned != 1) {
      if (!isPurged(source, ruleSet, status))
        error("ERROR: failed to get dlb rule info: %s\n", FW_StatusToString(status));
      return;
    }
    printState(state);
  }
  if (!shown) std::printf("  <no DLB rules in active ruleset>\n");
  std::printf("}\n\n");
}

using Show = void (*)(const RuleSource& source, const FWRuleSetID_t& ruleSet);

/// Shows the rule sets of a filter, or only the one of this name.
int showRuleSets(const RuleSource& source, const char* only, Show show) {
  unsigned int count = 0;
  FWStatus_t status = FW_GetRuleSetCount(source.handle, source.port, nullptr, &count);
  if (status != FW_STATUS_OK)
    return error("ERROR: failed to get total rulesets: %s\n", FW_StatusToString(status));
  if (count == 0) {
    std::printf("No rules.\n");
    return 0;
  }
  FWRuleSetID_t layer3{};
  FWRuleSetID_t layer2{};
  status = FW_GetRootRuleSet(source.handle, source.port, nullptr, &layer3, &layer2);
  if (status != FW_STATUS_OK) {
    // Without a line end, which scripts expect.
    return error("ERROR: failed to get root ruleset: %s", FW_StatusToString(status));
  }
  if (layer3.text[0] == '\0' && layer2.text[0] == '\0') {
    std::printf("No root rule set.\n");
    return 0;
  }
  for (unsigned int i = 0; i < count; ++i) {
    FWRuleSetID_t ruleSet{};
    unsigned int returned = 0;
    status = FW_GetRuleSetList(source.handle, source.port, nullptr, 1, i, &ruleSet, &returned);
    if (status != FW_STATUS_OK || returned != 1) {
      // The number is always 0, whichever rule set it was: scripts compare the line.
      return error("ERROR: failed to get #%d ruleset: %s\n", 0, FW_StatusToString(status));
    }
    if (only != nullptr && strncasecmp(ruleSet.text, only, kMaxRuleSetName) != 0) continue;
    show(source, ruleSet);
  }
  return 0;
}

}  // namespace

int GetFWRules(const char* cmd, int argc, char** argv) {
  // -i and -p are not in the text.
  static constexpr char kUsage[] =
      "Get rules of rulesets of a filter.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_VERBOSE
          USAGE_COMPONENT
      "    -r <string> : ruleset to get rules\n"
      "    -s          : print statistics\n"
      "    -d          : print DLB info\n" USAGE_HELP;

  const char* only = nullptr;
  bool statistics = false;
  bool loadBalancing = false;
  bool info = false;
  bool pretty = false;
  return onFilter(cmd, argc, argv,
                  {.usage = kUsage,
                   .letters = "hv::m:f:r:spdi",
                   .own = {{'r', &only, kMaxRuleSetName, "ERROR: invalid ruleset name %s\n"},
                           {'s', &statistics},
                           {'p', &pretty},
                           {'d', &loadBalancing},
                           {'i', &info}},
                   .check =
                       [&](const Target&) {
                         return statistics + loadBalancing + info > 1
                                    ? error("ERROR: only one of -s, -d, and -i can be specified.\n")
                                    : kGoOn;
                       }},
                  [&](const Target& target) {
                    return showRuleSets({target.handle, target.port, target.verbose(), pretty},
                                        only,
                                        loadBalancing ? showLoadBalancing
                                        : statistics  ? showStatistics
                                        : info        ? showInfo
                                                      : showRules);
                  });
}
