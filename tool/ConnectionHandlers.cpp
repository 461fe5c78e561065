#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "FlowRecord.h"
#include "HandlerForm.h"
#include "Handlers.h"
#include "Records.h"
#include "Refresh.h"
#include "TarnFWLog.h"

using namespace TarnFirewall;

namespace {

constexpr char kGetConnectionsUsage[] =
    "Get active connections for a filter.\n\nusage: tarnioctl %s <options>\n" USAGE_FILTER
        USAGE_REFRESH USAGE_HELP;

constexpr char kGetConnectionCountUsage[] =
    "Get active connection count for a filter.\n\nusage: tarnioctl %s <options>\n" USAGE_FILTER
        USAGE_VERBOSE USAGE_HELP;

constexpr char kClearConnectionUsage[] =
    "Clear all active connections of a filter.\n\n" USAGE_OPTIONS
    "    -f <string> : filter name\n" USAGE_VERBOSE USAGE_HELP;

constexpr option kClearConnectionWords[] = {
    {"help", no_argument, nullptr, 'h'},
    {"verbose", required_argument, nullptr, 'v'},
    {"filter", required_argument, nullptr, 'f'},
    {},
};

constexpr unsigned int kPage = 64;
constexpr int kNoConnectionsPause = 2;

/// Sets the level in the library before the filter is looked for, after the command has printed it
/// in its own words.
int raiseLibrary(const Target& target) {
  target.verbosity.raiseLibrary();
  return kGoOn;
}

int announceConnections(const Target& target) {
  if (target.verbose()) std::printf("Setting verbose level to : %d\n", target.verbosity.level);
  return raiseLibrary(target);
}

/// Without a line end, as scripts expect it.
int announceCount(const Target& target) {
  if (target.verbose()) std::printf("Setting verbose level : %d", target.verbosity.level);
  return raiseLibrary(target);
}

/// Results of these commands stand on standard output, failures as well: scripts read them there.
int failed(const char* text, FWStatus_t status) {
  printWith(stdout, text, FW_StatusToString(status));
  return 1;
}

FWStatus_t countConnections(const Target& target, unsigned int* count) {
  return FW_GetConnectionCount(target.handle, target.port, nullptr, nullptr, count);
}

/// Prints the connections of one pass, page by page. Their number is the kernel's of a moment
/// before: a page without any ends the pass.
int showPages(const Target& target, unsigned int count, FWFlowRecord_* page) {
  const FlowView view{.times = target.verbose()};
  std::uint64_t seen = 0;
  std::uint64_t cursor = 0;
  do {
    unsigned int returned = 0;
    const FWStatus_t status =
        FW_GetConnectionStat(target.handle, target.port, nullptr, kPage, cursor, page, &returned);
    if (status != FW_STATUS_OK) return failed("Failed to get active connections : %s\n", status);
    returned = std::min(returned, kPage);
    if (returned == 0) break;
    for (unsigned int i = 0; i < returned; ++i)
      PrintRecord(std::as_bytes(std::span(page + i, 1)), view);
    seen += returned;
    cursor = page[returned - 1].flowId + 1;
    // No flow comes after the last id there is; 0 would begin again.
  } while (seen < count && cursor != 0);
  return 0;
}

int showConnections(const Target& target, const Refresh& refresh) {
  Records<FWFlowRecord_> page;
  do {
    unsigned int count = 0;
    if (const FWStatus_t status = countConnections(target, &count); status != FW_STATUS_OK)
      return failed("Failed to get active connection count : %s\n", status);
    if (count == 0) {
      std::printf("No active connections\n");
      Refresh::pause(kNoConnectionsPause);
      continue;
    }
    if (page == nullptr) page = makeRecords<FWFlowRecord_>(kPage);
    if (page == nullptr) return error("ERROR: Failed to allocate memeory for records\n");
    if (const int status = showPages(target, count, page.get()); status != 0) return status;
    refresh.wait();
  } while (refresh.repeats);
  return 0;
}

}  // namespace

int GetConnections(const char* cmd, int argc, char** argv) {
  Refresh refresh;
  return onFilter(cmd, argc, argv,
                  {.usage = kGetConnectionsUsage,
                   .letters = "hf:t:v::",
                   .own = {refresh.option()},
                   .parsed = announceConnections,
                   .announces = false,
                   .raisesLibraryLevel = false,
                   .libraryFailure = {.text = "ERROR: Failed to initialize FW library\n"}},
                  [&](const Target& target) { return showConnections(target, refresh); });
}

int GetConnectionCount(const char* cmd, int argc, char** argv) {
  return onFilter(cmd, argc, argv,
                  {.usage = kGetConnectionCountUsage,
                   .letters = "hf:v::",
                   .parsed = announceCount,
                   .announces = false,
                   .raisesLibraryLevel = false},
                  [](const Target& target) {
                    unsigned int count = 0;
                    const FWStatus_t status = countConnections(target, &count);
                    if (status != FW_STATUS_OK)
                      return failed("Failed to get active connection count : %s\n", status);
                    std::printf("Active connection count : %d\n", static_cast<int>(count));
                    return 0;
                  });
}

int ClearConnection(const char* cmd, int argc, char** argv) {
  return onFilter(cmd, argc, argv,
                  {.usage = kClearConnectionUsage,
                   .letters = "hv:f:",
                   .words = kClearConnectionWords,
                   .announces = false},
                  [](const Target& target) {
                    if (target.verbose()) {
                      std::printf("verbose level : %d\n", target.verbosity.level);
                      std::printf("weirgate name : %s\n", target.filter.name);
                    }
                    FW_SetLibPrettyPrinting(pretty_printing, stdout);
                    unsigned int count = 0;
                    const FWStatus_t status =
                        FW_ClearAllConnection(target.handle, target.port, nullptr, &count);
                    FW_SetLibPrettyPrinting(nullptr, nullptr);
                    return outcome(status, "ERROR: failed to clear connection: %s\n");
                  });
}
