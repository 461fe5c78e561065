#include <algorithm>
#include <cstdio>
#include <cstring>
#include <string>

#include "AddrSetDisplay.h"
#include "HandlerForm.h"
#include "Handlers.h"
#include "Records.h"
#include "TarnFWUtil.h"

using namespace TarnFirewall;

namespace {

constexpr std::size_t kMaxSetName = 37;

/// The words of the two commands, which are one otherwise. Keep texts that look like those of the
/// other command: scripts match them.
struct Words {
  unsigned int type;
  const char* usage;
  const char* set;
  const char* shared;
  const char* global;
  const char* local;
  const char* none;
  const char* noSet;
  const char* statsOf;
  const char* nameTooLong;
  const char* notFound;
  decltype(GetSingleAddrSet)* show;
};

constexpr Words kAddrSets = {
    kAddrSetType,
    "Get addrsets of a filter.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_VERBOSE USAGE_COMPONENT
    "    -a <string> : addrset to get addresses\n"
    "    -s <table|entry|all|clear> : retrieve addrset stats\n"
    "    -o          : always use original filter\n" USAGE_HELP,
    "addrset",
    "addrset is shared for this filter\n",
    "global addrset\n",
    "\nlocal addrset\n",
    "No address sets.\n",
    "No address sets.\n",
    "address set",
    "ERROR: invalid addrset name %s\n",
    "no addrset found\n",
    GetSingleAddrSet,
};

constexpr Words kContainers = {
    kContainerType,
    "Get profiles of a filter.\n\n" USAGE_OPTIONS USAGE_FILTER USAGE_VERBOSE USAGE_COMPONENT
    "    -a <string> : profile to get addresses or attributes\n"
    "    -s <table|entry|all|clear> : retrieve profile stats\n"
    "    -o          : always use original filter\n" USAGE_HELP,
    "container",
    "containers are shared for this filter\n",
    "global containers\n",
    "\nlocal containers\n",
    "No containers.\n",
    "No containers sets.\n",
    "container",
    "ERROR: invalid container name %s\n",
    "no container found\n",
    GetSingleContainer,
};

/// What `-s` asks for. Repeated options add up, so that statistics can be read and cleared.
struct Statistics {
  bool given = false;
  bool table = false;
  bool entry = false;
  bool clear = false;

  /// A longer text that begins with a word counts as the word, but for "clear".
  void take(const char* text) {
    const auto begins = [text](const char* word) {
      return std::strncmp(text, word, std::strlen(word)) == 0;
    };
    given = true;
    if (begins("table") || begins("all")) table = true;
    if (begins("entry") || begins("all")) entry = true;
    if (std::strcmp(text, "clear") == 0) clear = true;
  }
};

/// What one command was asked to show, and of which filter.
struct Request {
  const Words& words;
  const char* named = nullptr;  // the set that `-a` names, if any
  Statistics statistics{};
  bool original = false;
  bool info = false;

  // Set when the options are known to be good.
  FWAddrSetID_t name{};
  fwlibhandle_* handle = nullptr;
  const dvs_port_* port = nullptr;
};

void print(const char* text) { std::fputs(text, stdout); }

/// Shows one set. What fails is reported there and changes nothing here.
void showSet(const Request& request, const FWAddrSetID_t& id, bool header) {
  if (request.info) {
    GetSingleAddrSetInfo(request.handle, request.port, id, request.words.type);
    return;
  }
  const std::string prefix = std::string(request.words.set) + " ";
  const Statistics& statistics = request.statistics;
  request.words.show(request.handle, request.port, id, prefix.c_str(),
                     {statistics.entry, header, statistics.clear});
}

/// Shows the sets that are there, all of them. As the other functions of a pass over the sets of
/// one selector it returns `kGoOn` when the next pass follows, or the command's status.
int showAll(const Request& request, unsigned int count, const Records<FWAddrSetStat_>& stats,
            unsigned int statsReturned) {
  const Words& words = request.words;
  const auto ids = makeRecords<FWAddrSetID_t>(count);
  if (ids == nullptr)
    return error("ERROR: no memory for getting %d %ss\n", static_cast<int>(count), words.set);
  unsigned int returned = statsReturned;
  if (stats != nullptr) {
    for (unsigned int i = 0; i < returned; ++i) ids[i] = stats[i].name;
  } else {
    returned = 0;
    const FWStatus_t status = FW_GetAddrSetList(request.handle, request.port, nullptr,
                                                FW_ADDRSET_ANY, count, 0, ids.get(), &returned);
    if (status != FW_STATUS_OK) {
      return error("ERROR: failed to get %d address sets: %s\n", static_cast<int>(count),
                   FW_StatusToString(status));
    }
    returned = std::min(returned, count);
  }

  unsigned int others = 0;
  for (unsigned int i = 0; i < returned; ++i) {
    unsigned int type = 0;
    unsigned int members = 0;
    unsigned int size = 0;
    if (GetContainerTypeAndSize(request.handle, request.port, ids[i], &type, &members, &size) !=
        0) {
      error("ERROR: failed to find type and size of %s\n", fieldText(ids[i].text).c_str());
      continue;
    }
    if (type != words.type) {
      ++others;
      continue;
    }
    if (stats != nullptr) PrintSingleAddrSetStat(&stats[i]);
    // The header goes with the first identifier even if that is of the other type.
    showSet(request, ids[i], i == 0);
  }
  if (others == returned) print(words.none);
  return kGoOn;
}

/// Shows the set that was named.
int showNamed(const Request& request, const Records<FWAddrSetStat_>& stats,
              unsigned int statsReturned) {
  const Words& words = request.words;
  unsigned int members = 0;
  std::uint64_t realized = 0;
  std::uint64_t generation = 0;
  if (FW_GetAddrSetInfo(request.handle, request.port, nullptr, &request.name, &members, &realized,
                        &generation) != FW_STATUS_OK) {
    print(words.noSet);
    return kGoOn;
  }
  if (request.statistics.table) {
    const FWAddrSetStat_* const end = stats.get() + statsReturned;
    const FWAddrSetStat_* const found = std::find_if(
        static_cast<const FWAddrSetStat_*>(stats.get()), end, [&](const FWAddrSetStat_& stat) {
          return std::memcmp(stat.name.text, request.name.text, sizeof request.name.text) == 0;
        });
    if (found == end) {
      // The command ends here, before the local pass: scripts depend on it.
      error("ERROR: failed to find stats for %s %s\n", words.statsOf, request.name.text);
      std::printf("%s %s {\n", words.set, request.name.text);
      print("failed to get stats\n");
      print("}\n");
      return 0;
    }
    PrintSingleAddrSetStat(found);
  }
  unsigned int type = 0;
  unsigned int size = 0;
  if (GetContainerTypeAndSize(request.handle, request.port, request.name, &type, &members, &size) !=
      0) {
    print(words.notFound);
    error("ERROR: failed to find type and size of %s\n", request.name.text);
    return 0;
  }
  if (type != words.type) {
    print(words.notFound);
    return 0;
  }
  showSet(request, request.name, true);
  return kGoOn;
}

int showPass(const Request& request) {
  Records<FWAddrSetStat_> stats;
  unsigned int statsReturned = 0;
  if (request.named != nullptr && !request.statistics.table)
    return showNamed(request, stats, statsReturned);

  const Words& words = request.words;
  unsigned int count = 0;
  FWStatus_t status =
      FW_GetAddrSetCount(request.handle, request.port, nullptr, FW_ADDRSET_ANY, &count);
  if (status != FW_STATUS_OK)
    return error("ERROR: failed to get %s count: %s\n", words.set, FW_StatusToString(status));
  if (count == 0) {
    print(words.none);
    return kGoOn;
  }
  if (request.statistics.table) {
    stats = makeRecords<FWAddrSetStat_>(count);
    if (stats == nullptr)
      return error("ERROR: no memory for getting %d %s stats\n", static_cast<int>(count),
                   words.set);
    // The request has no room for the clear flag.
    status = FW_GetAddrSetStatList(request.handle, request.port, nullptr, FW_ADDRSET_ANY, count, 0,
                                   stats.get(), &statsReturned);
    if (status != FW_STATUS_OK) {
      return error("ERROR: failed to get %d address sets stats: %s\n", static_cast<int>(count),
                   FW_StatusToString(status));
    }
    // The kernel may count more than were asked for.
    statsReturned = std::min(statsReturned, count);
  }
  return request.named != nullptr ? showNamed(request, stats, statsReturned)
                                  : showAll(request, count, stats, statsReturned);
}

/// The selector of the sets that all filters of an agent share. The agent stays.
void selectShared(dvs_port_& port) {
  std::memset(port.identifier, 0, sizeof port.identifier);
  Strncpy(port.identifier, "shared-addrset-filter-", sizeof port.identifier);
  setSelectorType(port, FW_SELECTOR_FILTER);
}

/// Shows the sets of the filter, after those that it shares with others.
int showFilter(Request& request, dvs_port_& port) {
  // A filter that cannot say whether it shares its sets does not share them. It is asked
  // with -o too.
  unsigned int enabled = 0;
  const FWStatus_t status = FW_GetSharedAddrSet(request.handle, request.port, nullptr, &enabled);
  if (!request.original && status == FW_STATUS_OK && enabled != 0) {
    print(request.words.shared);
    print(request.words.global);
    const dvs_port_ own = port;
    selectShared(port);
    if (const int ended = showPass(request); ended != kGoOn) return ended;
    print(request.words.local);
    port = own;
  }
  const int ended = showPass(request);
  return ended == kGoOn ? 0 : ended;
}

int showSets(const Words& words, const char* cmd, int argc, char** argv) {
  Request request{words};
  const auto takeStatistics = [&](const char* value, const Target&) {
    request.statistics.take(value);
    return kGoOn;
  };
  const auto oneOfBoth = [&](const Target&) {
    return request.statistics.given && request.info
               ? error("ERROR: only one of -s and -i can be specified.\n")
               : kGoOn;
  };
  return onFilter(cmd, argc, argv,
                  {.usage = words.usage,
                   .letters = "hv::m:f:a:s:oi",  // -i is not in the usage text
                   .own = {{'a', &request.named, kMaxSetName, words.nameTooLong},
                           {'s', takeStatistics},
                           {'o', &request.original},
                           {'i', &request.info}},
                   .check = oneOfBoth},
                  [&](Target& target) {
                    if (request.named != nullptr)
                      Strncpy(request.name.text, request.named, sizeof request.name.text);
                    request.handle = target.handle;
                    request.port = target.port;
                    return showFilter(request, *target.port);
                  });
}

}  // namespace

int GetFWAddrSets(const char* cmd, int argc, char** argv) {
  return showSets(kAddrSets, cmd, argc, argv);
}

int GetFWContainer(const char* cmd, int argc, char** argv) {
  return showSets(kContainers, cmd, argc, argv);
}
