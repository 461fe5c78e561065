#include <syslog.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

#include "HandlerForm.h"
#include "Handlers.h"

namespace {

/// One `-l` or `-c`.
struct Config {
  enum Kind { kFile = 1, kText = 2 };
  Kind kind;
  const char* argument;
};

constexpr unsigned int kMaxConfigs = 256;
constexpr char kStandardInput[] = "-";

FWStatus_t load(const Config& config, fwlibhandle_** library, fwconfigfile_** handle) {
  if (config.kind == Config::kText) return FW_LoadConfigString(config.argument, library, handle);
  if (std::strcmp(config.argument, kStandardInput) == 0) {
    return FW_LoadConfigFile2(stdin, kStandardInput, library, handle);
  }
  return FW_LoadConfigFile(config.argument, library, handle);
}

/// Loads one config, goes over to the channel that it names, and evaluates it.
int configure(const Config& config, FilterTarget& target, fwlibhandle_** library) {
  fwlibhandle_* loaded = *library;
  fwconfigfile_* handle = nullptr;
  if (const FWStatus_t status = load(config, &loaded, &handle)) {
    return error("ERROR: Could not load config `%s': %s\n", config.argument,
                 FW_StatusToString(status));
  }
  if (loaded != *library) {
    const FWStatus_t status = FW_Exit(*library);
    *library = loaded;
    if (status != 0) {
      FW_FreeConfigFile(handle);
      return error("ERROR: Failed to free old library `%s': %s\n", config.argument,
                   FW_StatusToString(status));
    }
  }
  dvs_port_* port = target.given ? &target.port : nullptr;
  if (const FWStatus_t status = FW_EvaluateConfigFile(*library, handle, port, nullptr)) {
    error("ERROR: Failed to eval config `%s': %s\n", config.argument, FW_StatusToString(status));
    FW_FreeConfigFile(handle);
    return 1;
  }
  syslog(LOG_NOTICE, "Filter %s was configured with `%s'.\n", target.name, config.argument);
  if (const FWStatus_t status = FW_FreeConfigFile(handle)) {
    return error("ERROR: Failed to free config `%s': %s\n", config.argument,
                 FW_StatusToString(status));
  }
  return 0;
}

}  // namespace

int TarnFWCLI(const char* cmd, int argc, char** argv) {
  static constexpr char kUsage[] = USAGE_OPTIONS
      "    -v <number> : verbose level of output\n" USAGE_FILTER USAGE_VERBOSE USAGE_COMPONENT
      "    -l <file>   : file of config commands\n"
      "    -c <cmd>    : config command\n" USAGE_HELP;

  const std::unique_ptr<Config[]> configs(new (std::nothrow) Config[kMaxConfigs]);
  if (configs == nullptr) return error("ERROR: failed to alloc memory for configs\n");
  unsigned int count = 0;
  const auto keep = [&](Config::Kind kind) {
    return [&, kind](const char* argument, const Target&) {
      if (count < kMaxConfigs) {
        configs[count++] = {kind, argument};
      } else {
        error("ERROR: cannot accept more than %d configs\n", static_cast<int>(kMaxConfigs));
      }
      return kGoOn;
    };
  };

  return onFilter(cmd, argc, argv,
                  {.usage = kUsage,
                   .letters = "hv::m:f:l:c:",
                   .own = {{'l', keep(Config::kFile)}, {'c', keep(Config::kText)}},
                   .needsFilter = false,
                   .prints = true},
                  [&](Target& target) {
                    if (count == 0) return 1;  // without a line, and the library stays open
                    int result = 0;
                    for (unsigned int i = 0; i < count && result == 0; ++i)
                      result = configure(configs[i], target.filter, &target.handle);
                    FW_Exit(target.handle);
                    return result;
                  });
}
