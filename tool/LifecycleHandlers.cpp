// Filters and agents that are made and removed, and the rules of a rule set that are deleted.

#include <syslog.h>

#include <cstdio>
#include <cstring>
#include <optional>

#include "Devices.h"
#include "HandlerForm.h"
#include "Handlers.h"
#include "Records.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

enum DirectRequest : std::uint32_t {
  kCreateAgent = 23,
  kDestroyAgent = 24,
  kRegisterAgent = 41,
};

// --- Filters

constexpr char kFilterUsage[] =
    "Create or destroy a filter.\n\n" USAGE_OPTIONS
    "    -w <number> : vm world id\n"
    "    -u <string> : vm uuid in the gfy form\n"
    "    -v <number> : vnic index\n"
    "    -f <number> : filter index\n"
    "    -a <string> : agent name, default agent is kelpco-sfw\n"
    "    -o <number> : on failure policy, must be 0 or 1\n"
    "    -0 to -9, -A to -F <string> : filter parameter of that number, 0 to 15\n" USAGE_HELP;

constexpr std::size_t kGfyLength = 47;
constexpr std::uint32_t kMaxVnicIndex = 255;
constexpr std::size_t kVnicText = 64;

/// The filter that the options tell of.
struct FilterDemand {
  FWFilterConfiguration_* configuration = nullptr;
  std::optional<std::uint32_t> world, vnicIndex, filterIndex;
  std::optional<bool> failPolicy;
  std::uint8_t uuid[kUuidSize]{};
  bool uuidGiven = false;
  const char* agent = nullptr;
};

OwnOption parameterOption(char letter, FWFilterConfiguration_* configuration) {
  return OwnOption(letter, [=](const char* text, const Target&) {
    const bool digit = letter <= '9';
    const auto number = static_cast<std::uint32_t>(digit ? letter - '0' : letter - 'A' + 10);
    FWFilterParameter_& slot = configuration->parameters[number];
    slot.number = number;
    Strncpy(slot.text, text, sizeof slot.text);
    configuration->parameterCount = configuration->parameterCount + 1;
    return kGoOn;
  });
}

/// The count is of options; the agent reads so many slots from the first on.
int checkParameters(const FWFilterConfiguration_& configuration) {
  const std::uint32_t count = configuration.parameterCount;
  for (std::uint32_t number = 0; number < count; ++number) {
    if (number < kFilterParameters && configuration.parameters[number].text[0] != '\0') continue;
    return error("ERROR: missing param %d\n", static_cast<int>(number));
  }
  return kGoOn;
}

/// What the two commands print.
struct FilterWords {
  const char* doing;
  const char* failed;
  const char* done;
};
constexpr FilterWords kAdding{"Add", "Create", "Created"};
constexpr FilterWords kDeleting{"Delete", "Delete", "Deleted"};

/// Ends with 1 in every case: scripts depend on it.
int sendDemand(const FilterDemand& demand, bool add) {
  char vnic[kVnicText];
  const auto vnicIndex = static_cast<int>(*demand.vnicIndex);
  if (!uuid2vnicstr(demand.uuid, vnicIndex, vnic, sizeof vnic))
    return error("ERROR: failed to prepare vnic str\n");

  const FilterWords& words = add ? kAdding : kDeleting;
  std::printf("%s filter: vm worldId(%d), vnic (%s), filter (%d), agent (%s)\n", words.doing,
              static_cast<int>(*demand.world), vnic, static_cast<int>(*demand.filterIndex),
              demand.agent);
  FWFilterConfiguration_& configuration = *demand.configuration;
  configuration.failPolicy = demand.failPolicy.value_or(false) ? 1 : 0;
  Strncpy(configuration.agent, demand.agent, sizeof configuration.agent);
  const FWStatus_t status =
      FW_AddRemoveFilter(&configuration, *demand.world, *demand.filterIndex, vnic, add ? 1 : 0);
  if (status != FW_STATUS_OK)
    return error("ERROR: %s filter failed: error %s\n", words.failed, FW_StatusToString(status));
  std::printf("Filter of agent %s vnic %s index %u was %s\n", demand.agent, vnic,
              *demand.filterIndex, words.done);
  return 1;
}

int AddDeleteFilter(const char* cmd, int argc, char** argv, bool add) {
  const auto configuration = makeRecords<FWFilterConfiguration_>(1);
  if (configuration == nullptr) return error("ERROR: no memory for filter config\n");
  FWFilterConfiguration_* const slots = configuration.get();
  FilterDemand demand;
  demand.configuration = slots;

  const auto takeUuid = [&](const char* value, const Target&) {
    demand.uuidGiven = true;
    if (std::strlen(value) == kGfyLength && gfystr2uuid(demand.uuid, value)) return kGoOn;
    return error(
        "ERROR: bad vcuuid, correct format \"00 01 02 03 04 05 06 07-08 09 0a 0b 0c 0d 0e 0f\"\n");
  };
  const OwnOption vnicNumber('v', &demand.vnicIndex);
  const auto takeVnicIndex = [&](const char* value, const Target& target) {
    const int taken = vnicNumber.take(value, target);
    if (taken != kGoOn || *demand.vnicIndex <= kMaxVnicIndex) return taken;
    return error("ERROR: bad vnic index, no larger than 255\n");
  };
  const auto takePolicy = [&](const char* value, const Target&) {
    int number = 0;
    if (!decimalOption(value, &number) || number < 0 || number > 1) return kNotTaken;
    demand.failPolicy = number == 1;
    return kGoOn;
  };
  const auto check = [&](const Target& target) {
    if (const int failed = checkParameters(*slots); failed != kGoOn) return failed;
    const bool whole = demand.world && demand.uuidGiven && demand.vnicIndex && demand.filterIndex &&
                       demand.agent != nullptr;
    return whole ? kGoOn : target.usage(1);
  };
  return onHost(cmd, argc, argv,
                {.usage = kFilterUsage,
                 .letters = "hw:u:v:f:a:o:0:1:2:3:4:5:6:7:8:9:A:B:C:D:E:F:",
                 .own = {{'w', &demand.world},
                         {'u', takeUuid},
                         {'v', takeVnicIndex},
                         {'f', &demand.filterIndex},
                         {'a', &demand.agent, kMaxName, "ERROR: invalid agent name %s"},
                         {'o', takePolicy},
                         parameterOption('0', slots),
                         parameterOption('1', slots),
                         parameterOption('2', slots),
                         parameterOption('3', slots),
                         parameterOption('4', slots),
                         parameterOption('5', slots),
                         parameterOption('6', slots),
                         parameterOption('7', slots),
                         parameterOption('8', slots),
                         parameterOption('9', slots),
                         parameterOption('A', slots),
                         parameterOption('B', slots),
                         parameterOption('C', slots),
                         parameterOption('D', slots),
                         parameterOption('E', slots),
                         parameterOption('F', slots)},
                 .parsed = check},
                [&](const Target&) { return sendDemand(demand, add); });
}

// --- Agents

constexpr char kCreateAgentUsage[] =
    "Create an agent.\n\n" USAGE_OPTIONS "    -a <string> : agent name\n" USAGE_HELP;
constexpr char kDestroyAgentUsage[] =
    "Destroy an agent.\n\n" USAGE_OPTIONS "    -a <string> : agent name\n" USAGE_HELP;

/// As the kernel lays it out.
struct FWAgentName_ {
  char name[100];  // +0
};
static_assert(sizeof(FWAgentName_) == 100 && alignof(FWAgentName_) == 1);

/// What the kernel says is not read.
int CreateDestroyAgent(const char* cmd, int argc, char** argv, bool create) {
  const char* agent = nullptr;
  return onHost(cmd, argc, argv,
                {.usage = create ? kCreateAgentUsage : kDestroyAgentUsage,
                 .letters = "ha:",
                 .own = {{'a', &agent, kMaxName, "ERROR: invalid agent name %s\n"}}},
                [&](const Target& target) {
                  if (agent == nullptr) return target.usage(1);
                  FWAgentName_ name{};
                  Strncpy(name.name, agent, sizeof name.name);
                  directRequest(kFirewall, create ? kCreateAgent : kDestroyAgent, name);
                  return 0;
                });
}

// --- Rules

constexpr char kDeleteRulesUsage[] =
    "Delete all rules of a ruleset.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_VERBOSE USAGE_COMPONENT
    "    -r <string> : ruleset to del all rules, e.g., domain-c7\n" USAGE_HELP;

constexpr std::size_t kMaxRuleSet = sizeof(FWRuleSetID_t) - 1;

int deleteRules(const Target& target, const char* ruleSet) {
  FWRuleSetID_t id{};
  Strncpy(id.text, ruleSet, sizeof id.text);
  const char* const filter = target.filter.name;
  const FWStatus_t status = FW_ClearRuleSet(target.handle, target.port, nullptr, &id);
  if (status != FW_STATUS_OK)
    return error("ERROR: failed to delete all rules of ruleset %s on filter %s: %s\n", ruleSet,
                 filter, FW_StatusToString(status));
  syslog(LOG_NOTICE, "All rules of ruleset %s on filter %s were deleted.\n", ruleSet, filter);
  if (target.verbose())
    std::printf("DEBUG: All rules of ruleset %s on filter %s were deleted.\n", ruleSet, filter);
  return 0;
}

}  // namespace

int AddFilter(const char* cmd, int argc, char** argv) {
  return AddDeleteFilter(cmd, argc, argv, true);
}

int DeleteFilter(const char* cmd, int argc, char** argv) {
  return AddDeleteFilter(cmd, argc, argv, false);
}

int CreateAgent(const char* cmd, int argc, char** argv) {
  return CreateDestroyAgent(cmd, argc, argv, true);
}

int DestroyAgent(const char* cmd, int argc, char** argv) {
  return CreateDestroyAgent(cmd, argc, argv, false);
}

// Takes no options: what follows the word is left alone, -h too.
int SetRegisterAgent(const char*, int, char**) {
  std::uint32_t status = kNotAnswered;
  directRequest(kFirewall, kRegisterAgent, RequestMemory{}, &status);
  if (status != 0) error("ERROR: ioctl failed to set registeragent %d\n", static_cast<int>(status));
  return 0;
}

int DelRules(const char* cmd, int argc, char** argv) {
  const char* ruleSet = nullptr;
  return onFilter(cmd, argc, argv,
                  {.usage = kDeleteRulesUsage,
                   .letters = "hv::m:f:r:",
                   .own = {{'r', &ruleSet, kMaxRuleSet, "ERROR: invalid ruleset name %s\n"}},
                   .check = given(ruleSet, "ERROR: ruleset name is missing.\n")},
                  [&](const Target& target) { return deleteRules(target, ruleSet); });
}
