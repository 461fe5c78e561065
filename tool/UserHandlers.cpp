#include "HandlerForm.h"
#include "Handlers.h"

using namespace TarnFirewall;

namespace {

constexpr char kUsage[] = "print uid to sid mapping for a filter.\n\n" USAGE_OPTIONS USAGE_FILTER
    USAGE_VERBOSE USAGE_HELP;

int showUsers(const Target& target) {
  unsigned int count = 0;
  unsigned int size = 0;
  if (FW_GetUid2SidMapSize(target.handle, target.port, nullptr, &count, &size) != FW_STATUS_OK)
    return error("ERROR: Failed to get uid to sid map size for filter : %s\n", target.filter.name);
  if (FW_GetUid2SidMap(target.handle, target.port, nullptr, count, size) != FW_STATUS_OK)
    return error("ERROR: Failed to get uid to sid map for filter : %s\n", target.filter.name);
  return 0;
}

}  // namespace

int GetUid2SidMap(const char* cmd, int argc, char** argv) {
  return onFilter(cmd, argc, argv,
                  {.usage = kUsage,
                   .letters = "hv::f:",
                   .missing = {.text = kFilterMissingPlain},
                   .raisesLibraryLevel = false,
                   .prints = true},
                  showUsers);
}
