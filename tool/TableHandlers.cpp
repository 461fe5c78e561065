// The filter tables of the host, and the machines that follow them. Most requests are not asked for
// their result: a change that fails is in the log only, and the revalidation follows it.

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <span>

#include "Devices.h"
#include "HandlerForm.h"
#include "Handlers.h"
#include "Records.h"
#include "TableDisplay.h"
#include "TableRequests.h"
#include "TarnFWFilter.h"
#include "TarnFWRevalidate.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

constexpr std::size_t kAgentField = sizeof(WGTEntryFrame::agent);
constexpr char kBadAgent[] = "ERROR: invalid agent name %s\n";

int exitStatus(UtilStatus_t result) { return result == UTIL_STATUS_OK ? 0 : 1; }

// --- getfiltertables

constexpr char kGetUsage[] = "Get include and exclude tables.\n\n" USAGE_OPTIONS
                             "    -a <string> : agent name, default agent is kelpco-sfw\n"
                             "    -n          : print vnic index in the vnic form\n" USAGE_HELP;

/// Shows a table and a blank line, or that it is empty.
int showTable(const FilterTable& table, const char* agent, bool vnicForm, const char* empty) {
  std::uint32_t room = 0;
  askSize(table, agent, &room);
  if (room == 0) {
    std::fputs(empty, stdout);
    return 0;
  }
  const auto entries = makeRecords<std::byte>(room);
  if (entries == nullptr)
    return error("ERROR: no memory for %s table of size %d\n", table.word, static_cast<int>(room));
  TableReply reply{};
  readEntries(table, agent, {entries.get(), room}, &reply);
  std::printf("%s Table (size = %d)\n", table.title, static_cast<int>(reply.size));
  visitEntries({entries.get(), reply.filled},
               [=](std::uint8_t type, std::span<const std::byte> value) {
                 return printTableEntry(type, value, vnicForm);
               });
  std::printf("\n");
  return 0;
}

// --- setfiltertables

constexpr char kSetUsage[] = "Set include and exclude tables.\n\n" USAGE_OPTIONS
                             "    -a <string> : agent name, default agent is kelpco-sfw\n"
                             "    -e          : update exclude table instead of include table\n"
                             "    -d          : delete an entry instead of adding an entry\n"
                             "    -o          : entry is a host entry\n"
                             "    -n <string> : entry is a vnic, vnic form\n" USAGE_FILTER
                             "    -s <number> : slot number for host entry, default is 2\n"
                             "    -w <number> : vm world id, used with -n together\n"
                             "                  world id can be obtained by /bin/tarn_vm_list.sh\n"
                             "    -k          : skip Revalidate VM\n" USAGE_HELP;

constexpr std::uint32_t kDefaultSlot = 2;

/// What the options of `setfiltertables` say.
struct TableChange {
  char agent[kAgentField]{};  // of the frame: the later one of -a and -f
  bool agentGiven = false;
  bool exclude = false;
  bool remove = false;
  bool host = false;
  bool skipsRevalidation = false;
  bool vnicGiven = false;
  FilterTarget filter;
  std::uint8_t uuid[kUuidSize]{};
  int vnicIndex = 0;
  std::optional<std::uint32_t> slot;
  std::optional<std::uint32_t> world;
};

/// What is missing, or too much, ends the command.
int checkChange(const TableChange& change, const Target& target) {
  if (!change.agentGiven && !change.filter.given)
    return target.usage.error("ERROR: agent is missing\n");
  const int entries = int{change.vnicGiven} + int{change.filter.given};
  if (change.exclude)
    return entries == 1 ? kGoOn : target.usage.error("ERROR: vnic or filter is missing\n");
  return entries + int{change.host} == 1
             ? kGoOn
             : target.usage.error("ERROR: must specify either vnic, filter, or host\n");
}

/// Looks up on which virtual NIC the filter is. Returns `kGoOn`, or 1 after an error line.
int findVnic(TableChange& change) {
  FWFilterRecord_ record{};
  Strncpy(record.name, change.filter.name, sizeof record.name);
  FWFilterList_ list{};
  Strncpy(list.name, change.filter.agent, sizeof list.name);
  list.count = 1;
  list.bufferLength = sizeof record;
  list.buffer = addressOf(&record);
  std::uint32_t status = 0;
  directRequest(kFirewall, FW_REQUEST_ONE_FILTER, list, &status);
  if (status != 0)
    return error("ERROR: failed to get detail of filter %s: %d\n", change.filter.name,
                 static_cast<int>(status));
  const std::string uuid = fieldText(record.vmUuid);
  if (!gfystr2uuid(change.uuid, uuid.c_str())) return error("ERROR: bad vnic %s\n", uuid.c_str());
  change.vnicIndex = static_cast<int>(record.vnicIndex);
  return kGoOn;
}

/// An entry as it stands in a table.
template <typename Value>
struct Entry {
  WGTEntryHead_ head;
  Value value;
};

template <typename Value>
void sendEntry(const TableChange& change, const FilterTable& table, WGTEntryType type,
               const Value& value) {
  Entry<Value> entry{{type, sizeof value}, value};
  static_assert(sizeof entry == sizeof(WGTEntryHead_) + sizeof value);
  sendEntries(change.remove ? table.remove : table.add, change.agent, memoryOf(entry));
}

void sendChange(const TableChange& change) {
  const std::uint32_t slot = change.slot.value_or(kDefaultSlot);
  if (change.exclude) {
    WGTExcludeVnic_ vnic{};
    std::memcpy(vnic.uuid, change.uuid, sizeof vnic.uuid);
    vnic.vnicIndex = static_cast<std::uint32_t>(change.vnicIndex);
    sendEntry(change, kExcludeTable, WGT_ENTRY_EXCLUDE_VNIC, vnic);
  } else if (change.host) {
    WGTHost_ host{};
    host.slot = slot;
    sendEntry(change, kIncludeTable, WGT_ENTRY_HOST, host);
  } else {
    WGTIncludeVnic_ vnic{};
    std::memcpy(vnic.uuid, change.uuid, sizeof vnic.uuid);
    vnic.vnicIndex = static_cast<std::uint8_t>(change.vnicIndex);
    vnic.slot = slot;
    sendEntry(change, kIncludeTable, WGT_ENTRY_INCLUDE_VNIC, vnic);
  }
}

int changeTable(TableChange& change) {
  if (change.filter.given) {
    if (const int failed = findVnic(change); failed != kGoOn) return failed;
  }
  sendChange(change);
  if (change.skipsRevalidation) return 0;
  const int fd = WGT_GetFd();
  const UtilStatus_t result =
      change.world ? RevalidateOneVM(fd, *change.world, change.uuid) : RevalidateAllVMs(fd);
  if (result == UTIL_STATUS_OK) return 0;
  return error("ERROR: Failed to revalidate vm(s) after set weirgate table\n");
}

// --- clrwgttable

constexpr char kClearUsage[] =
    "Remove the weirgate dynamic filter creation entries for an agent.\n\n" USAGE_OPTIONS
    "    -a <string> : agent name, default kelpco-sfw\n" USAGE_VERBOSE
    "    -i          : only clear incl tables\n"
    "    -e          : only clear excl tables\n" USAGE_HELP;

constexpr option kClearWords[] = {kHelpWord,
                                  {"verbose", required_argument, nullptr, 'v'},
                                  {"agent", required_argument, nullptr, 'a'},
                                  {"incl", no_argument, nullptr, 'i'},
                                  {"excl", no_argument, nullptr, 'e'},
                                  kLastWord};

/// A device that is not there fails with the same number as an agent without entries.
bool hasNoEntries(int number) { return number == ENOENT && WGT_GetFd() >= 0; }

int ClearWeirgateTblOne(const char* agent, const FilterTable& table, int level) {
  std::uint32_t size = 0;
  if (const int result = askSize(table, agent, &size); result != 0) {
    const int number = errno;
    if (!hasNoEntries(number)) {
      std::printf("failed to get %s size: %d, %d\n", table.word, result, number);
      return 1;
    }
    std::printf("No %s entries found for %s\n", table.word, agent);
    return 0;
  }
  if (size == 0) {
    std::printf("Entries for %s already cleared\n", agent);
    return 0;
  }
  if (level > 1) std::printf("buflen: %u\n", size);
  const auto entries = makeRecords<std::byte>(size);
  if (entries == nullptr) return 1;

  TableReply reply{};
  if (const int result = readEntries(table, agent, {entries.get(), size}, &reply); result != 0) {
    std::printf("failed to get current %s entries: %d, %d\n", table.word, result, errno);
    return 1;
  }
  // "include" for both tables, as it has always been.
  if (level > 0) std::printf("got the include extries for %s\n", agent);

  if (const int result = sendEntries(table.remove, agent, {entries.get(), reply.filled});
      result != 0) {
    std::printf("failed to delete the %s entries: %d, %d\n", table.word, result, errno);
    return 1;
  }
  if (level > 0) std::printf("cleared the %s extries for %s\n", table.word, agent);
  return 0;
}

// --- clearallfilters

constexpr char kClearAllUsage[] =
    "Clear all filters.\n\n" USAGE_OPTIONS
    "    -a <string> : agent name, default agent is kelpco-sfw\n"
    "    -d          : delay destroying disconnected filters\n"
    "    -e          : exclude list\n"
    "    -o          : only destroy disconnected filters\n" USAGE_HELP;

/// Takes the filters of the machines away by clearing what asks for them.
int removeConnected(const char* agent, bool exclude) {
  sendEntries(kIncludeTable.clear, agent);
  std::printf("Cleared weirgate include table.\n");
  if (exclude) {
    sendEntries(kExcludeTable.clear, agent);
    std::printf("Cleared weirgate exclude table.\n");
  }
  if (RevalidateAllVMs(WGT_GetFd()) != UTIL_STATUS_OK) return 1;
  std::printf("Updated all VMs to remove filters.\n");
  return 0;
}

void destroyDisconnected(const char* agent) {
  sendEntries(WGT_REQUEST_DESTROY_DISCONNECTED, agent);
  std::printf(
      "Destroyed all disconnected filters (please ignore `Function not implemented' error if there "
      "is).\n");
}

// --- revalidatevm

constexpr char kRevalidateUsage[] =
    "Revalidate VM(s) according to weirgate tables.\n\n" USAGE_OPTIONS
    "    -w <number> : vm world id, used with -u together to revalidate a single VM\n"
    "    -u <string> : vm uuid in the gfy form\n" USAGE_HELP;

}  // namespace

int GetFilterTables(const char* cmd, int argc, char** argv) {
  const char* agent = nullptr;
  bool vnicForm = false;
  return onHost(cmd, argc, argv,
                {.usage = kGetUsage,
                 .letters = "ha:n",
                 .own = {{'a', &agent, kAgentField - 1, kBadAgent}, {'n', &vnicForm}}},
                [&](const Target& target) {
                  if (agent == nullptr)
                    return target.usage(1);  // whatever the text says of a default
                  if (showTable(kExcludeTable, agent, vnicForm, "Exclude table is empty\n\n") != 0)
                    return 1;
                  return showTable(kIncludeTable, agent, vnicForm, "Include table is empty.\n");
                });
}

int SetFilterTables(const char* cmd, int argc, char** argv) {
  TableChange change;
  const auto takeAgent = [&](const char* value, const Target&) {
    if (std::strlen(value) >= kAgentField) return printWith(stderr, kBadAgent, value), 1;
    Strncpy(change.agent, value, sizeof change.agent);
    change.agentGiven = true;
    return kGoOn;
  };
  const auto takeFilter = [&](const char* value, const Target&) {
    if (change.filter.take(value) != 0) return 1;
    Strncpy(change.agent, change.filter.agent, sizeof change.agent);
    return kGoOn;
  };
  const auto takeVnic = [&](const char* value, const Target&) {
    if (!vnicstr2uuid(change.uuid, &change.vnicIndex, value))
      return error("ERROR: bad vnic %s\n", value);
    change.vnicGiven = true;
    return kGoOn;
  };
  return onHost(cmd, argc, argv,
                {.usage = kSetUsage,
                 .letters = "hf:a:edon:s:w:k",
                 .own = {{'a', takeAgent},
                         {'f', takeFilter},
                         {'n', takeVnic},
                         {'e', &change.exclude},
                         {'d', &change.remove},
                         {'o', &change.host},
                         {'k', &change.skipsRevalidation},
                         {'s', &change.slot},
                         {'w', &change.world}},
                 .parsed = [&](const Target& target) { return checkChange(change, target); }},
                [&](const Target&) { return changeTable(change); });
}

int ClearWeirgateTbl(const char* cmd, int argc, char** argv) {
  const char* agent = kDefaultAgent;
  bool include = false;
  bool exclude = false;
  const auto oneAtMost = [&](const Target&) {
    if (!include || !exclude) return kGoOn;
    return error("-i and -e are mutually exclusive, clearing both is default\n");
  };
  return onHost(cmd, argc, argv,
                {.usage = kClearUsage,
                 .letters = "hv:a:ie",
                 .words = kClearWords,
                 .own = {{'a', &agent, kMaxName, "ERROR: agent name too long"},
                         {'i', &include},
                         {'e', &exclude}},
                 .parsed = oneAtMost,
                 .announces = false},
                [&](const Target& target) {
                  const int level = target.verbosity.level;
                  if (level != 0)
                    std::printf("verbose level : %d\nweirgate agent: %s\n", level, agent);
                  if (!exclude) {
                    const int failed = ClearWeirgateTblOne(agent, kIncludeTable, level);
                    if (failed != 0) return failed;
                  }
                  return include ? 0 : ClearWeirgateTblOne(agent, kExcludeTable, level);
                });
}

int ClearAllFilters(const char* cmd, int argc, char** argv) {
  const char* agent = kDefaultAgent;
  bool exclude = false;
  bool delay = false;
  bool only = false;
  return onHost(cmd, argc, argv,
                {.usage = kClearAllUsage,
                 .letters = "hea:do",
                 .own = {{'a', &agent, kAgentField - 1, kBadAgent},
                         {'e', &exclude},
                         {'d', &delay},
                         {'o', &only}}},
                [&](const Target&) {
                  if (delay && only) {
                    std::printf("Cannot have option -d and -o together.\n");
                    return 1;
                  }
                  std::printf("Removing all %s filters...\n", agent);
                  int status = 1;  // of -o as well, which scripts know
                  if (only) {
                    std::printf("Skip connected filters.\n");
                  } else {
                    status = removeConnected(agent, exclude);
                  }
                  if (!delay) destroyDisconnected(agent);
                  return status;
                });
}

int RevalidateVM(const char* cmd, int argc, char** argv) {
  std::optional<std::uint32_t> world;
  std::uint8_t uuid[kUuidSize];
  bool uuidGiven = false;
  const auto takeUuid = [&](const char* value, const Target& target) {
    if (!gfystr2uuid(uuid, value)) return target.usage.error("ERROR: Bad vm uuid string.\n");
    uuidGiven = true;
    return kGoOn;
  };
  return onHost(
      cmd, argc, argv,
      {.usage = kRevalidateUsage, .letters = "hw:u:", .own = {{'w', &world}, {'u', takeUuid}}},
      [&](const Target& target) {
        if (world.has_value() != uuidGiven)
          return target.usage.error(
              "ERROR: Please provide both vm uuid and world id to revalidate one vm\n");
        const int fd = WGT_GetFd();
        return exitStatus(world ? RevalidateOneVM(fd, *world, uuid) : RevalidateAllVMs(fd));
      });
}
