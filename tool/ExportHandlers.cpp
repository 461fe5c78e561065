// The version in which filters export their state: of one filter, or of all of an agent.

#include <cstdio>
#include <string>

#include "FilterHandlers.h"
#include "HandlerForm.h"
#include "Handlers.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

constexpr char kGetUsage[] =
    "Get skiffer export version for a filter.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_VERBOSE
        USAGE_HELP;

constexpr char kSetUsage[] =
    "Set skiffer export version for a filter.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_VERBOSE
    "    -e <number> : export version to set\n" USAGE_HELP;

constexpr char kSetAllUsage[] =
    "Set skiffer export version for all kelpco-sfw filters.\n\n" USAGE_OPTIONS
    "    -a <string> : agent name\n"
    "    -e <number> : export version to set\n"
    "    -r          : read export versions only\n"
    "    -x          : run on BRQV\n" USAGE_VERBOSE USAGE_HELP;

constexpr option kGetWords[] = {kFilterWord, kHelpWord, kVerboseWord, kLastWord};
constexpr option kSetWords[] = {
    {"export", required_argument, nullptr, 'e'}, kFilterWord, kHelpWord, kVerboseWord, kLastWord};

constexpr char kVersionMissing[] = "ERROR: Export version is not specified\n";

/// The option `-e`.
struct Version {
  int number = 0;
  bool given = false;

  OwnOption option() {
    return {'e', [this](const char* value, const Target&) {
              given = decimalOption(value, &number) && number >= 0;
              return given ? kGoOn : kNotTaken;
            }};
  }
  unsigned int value() const { return static_cast<unsigned int>(number); }
};

/// What is done with every filter.
struct Upgrade {
  Version wanted;
  bool readOnly = false;
  bool oldRecords = false;
  const char* agent = nullptr;
};

/// Name and agent of a record of the list, of either size: both have them first.
struct Listed {
  std::string name;
  std::string agent;
};

Listed listedAt(const FilterBuffer& records, std::size_t index, bool old) {
  const std::size_t size = old ? sizeof(FWOldFilterRecord_) : sizeof(FWFilterRecord_);
  static_assert(offsetof(FWFilterRecord_, name) == offsetof(FWOldFilterRecord_, name) &&
                offsetof(FWFilterRecord_, agent) == offsetof(FWOldFilterRecord_, agent));
  const auto record = loadRecord<FWOldFilterRecord_>(records.get() + index * size);
  return {fieldText(record.name, kMaxName), fieldText(record.agent, kMaxName)};
}

enum class Step { kFailed, kFailedAndOn, kOn };

/// Reads the version of one filter and sets another one.
Step upgrade(const Upgrade& all, fwlibhandle_* handle, const std::string& name) {
  char agent[kMaxName] = {};
  if (GetAgentFromFilterName(name.c_str(), agent) != 0) {
    std::printf("Filter %s - unable to get agent\n", name.c_str());
    return Step::kFailed;
  }
  dvs_port_ port{};
  setSelectorType(port, FW_SELECTOR_FILTER);
  Strncpy(port.identifier, name.c_str(), sizeof port.identifier);
  Strncpy(port.agent, agent, sizeof port.agent);

  unsigned int version = 0;
  if (FW_GetSkifferExportver(handle, &port, nullptr, &version) != FW_STATUS_OK) {
    std::printf("Filter %s - failed to get version.  Skipping.\n", name.c_str());
    return Step::kFailed;
  }
  const int shown = static_cast<int>(version);
  if (all.readOnly) {
    std::printf("Filter %s - version %d\n", name.c_str(), shown);
    return Step::kOn;
  }
  if (version == all.wanted.value()) {
    std::printf("Filter %s - already set to version %d\n", name.c_str(), shown);
    return Step::kOn;
  }
  std::printf("Filter %s - upgrading from %d to version %d - ", name.c_str(), shown,
              all.wanted.number);
  const FWStatus_t status = FW_SetSkifferExportver(handle, &port, nullptr, all.wanted.value());
  std::printf(status == FW_STATUS_OK ? "OK\n" : "FAILED\n");
  return status == FW_STATUS_OK ? Step::kOn : Step::kFailedAndOn;
}

int upgradeAll(const Upgrade& all, const Target& target) {
  std::uint32_t count = 0;
  FilterBuffer records;
  if (GetFilterList(all.oldRecords, false, all.agent, &count, &records, nullptr) != 0) return 1;
  if (count == 0) {
    std::printf("there are no filters for agent %s\n", all.agent != nullptr ? all.agent : "");
    return 0;
  }
  if (target.verbose()) {
    std::printf("Total number of kernel filters: %u\n", count);
    for (std::uint32_t i = 0; i < count; ++i) {
      const Listed listed = listedAt(records, i, all.oldRecords);
      std::printf("%s : ", listed.agent.c_str());
      std::printf("%s\n", listed.name.c_str());
    }
  }
  int status = 0;
  std::uint32_t current = 0;
  for (std::uint32_t turn = 0; turn < count; ++turn) {
    const Step step = upgrade(all, target.handle, listedAt(records, current, all.oldRecords).name);
    if (step != Step::kOn) status = 1;
    // A filter whose version can't be read is tried again in the place of those after it: scripts
    // that run the command until it succeeds depend on the number of lines.
    if (step != Step::kFailed) ++current;
  }
  return status;
}

}  // namespace

int GetSkifferExportVersion(const char* cmd, int argc, char** argv) {
  return onFilter(
      cmd, argc, argv,
      {.usage = kGetUsage,
       .letters = "hv::f:",
       .words = kGetWords,
       .missing = {.text = kFilterMissingPlain},
       .prints = true},
      [](const Target& target) {
        unsigned int version = 0;
        if (FW_GetSkifferExportver(target.handle, target.port, nullptr, &version) == FW_STATUS_OK)
          return 0;
        return error("ERROR: Failed to get skiffer export version for filter %s\n",
                     target.filter.name);
      });
}

int SetSkifferExportVersion(const char* cmd, int argc, char** argv) {
  Version version;
  const auto needVersion = [&](const Target& target) {
    return version.given ? kGoOn : target.usage.error("%s", kVersionMissing);
  };
  return onFilter(cmd, argc, argv,
                  {.usage = kSetUsage,
                   .letters = "hv::f:e:",
                   .words = kSetWords,
                   .own = {version.option()},
                   .missing = {.text = "ERROR: Filter name is not specified\n"},
                   .check = needVersion,
                   .opensLibrary = false},
                  [&](Target& target) {
                    if (target.verbose()) std::printf("export version : %d\n", version.number);
                    if (initFWLibrary(&target.handle) != 0) return 1;
                    const FWStatus_t status = FW_SetSkifferExportver(target.handle, target.port,
                                                                     nullptr, version.value());
                    if (status == FW_STATUS_OK) return 0;
                    return error("ERROR: Failed to set export version for filter %s: %s\n",
                                 target.filter.name, FW_StatusToString(status));
                  });
}

int SetSkifferExportVersionAllFilters(const char* cmd, int argc, char** argv) {
  Upgrade all;
  const auto needVersion = [&](const Target& target) {
    return all.wanted.given || all.readOnly ? kGoOn : target.usage.error("%s", kVersionMissing);
  };
  return onFilter(cmd, argc, argv,
                  {.usage = kSetAllUsage,
                   .letters = "ha:v::e:rx",
                   .own = {{'a', &all.agent, kMaxName, "ERROR: invalid agent name %s\n"},
                           all.wanted.option(),
                           {'r', &all.readOnly},
                           {'x', &all.oldRecords}},
                   .needsFilter = false,
                   .check = needVersion},
                  [&](const Target& target) { return upgradeAll(all, target); });
}
