#include "LabTraceDumps.h"

#include <algorithm>
#include <map>

#include "LabFamily.h"
#include "LabFlowFile.h"
#include "LabHoldings.h"
#include "LabSpoofGuard.h"
#include "LabTableEntry.h"
#include "LabText.h"

namespace TarnLab::TraceDumps {

namespace {

constexpr std::size_t shownFlows = 1000;  // of a filter

/// Calls `describe` with each filter's place and folder, and writes its text below the filter's
/// name. Filters that have nothing are left out when `all` is false.
template <typename Describe>
std::string forEachFilter(const Host& host, bool all, Describe describe) {
  std::string text;
  for (std::size_t i = 0; i < host.filterCount(); ++i) {
    const std::string lines = describe(i, host.folderOf(i));
    if (all || !lines.empty()) {
      text += "filter " + printable(host.name(i)) + "\n" + lines;
    }
  }
  return text.empty() ? "none\n" : text;
}

/// Settings whose names begin so, with their values, a line each.
std::string settingLines(const Store& store, const std::string& folder,
                         std::initializer_list<std::string_view> beginnings) {
  const Settings settings = Settings::load(store, folder);
  std::string text;
  for (const std::string_view beginning : beginnings) {
    for (const std::string& line : settings.linesOf(beginning)) text += "  " + line + "\n";
  }
  return text;
}

std::string tableOf(const Store& store, const std::string& folder, std::string_view name) {
  const Table* table = Holdings::findTable(name);
  return table == nullptr ? "" : Holdings::table(store, folder, *table);
}

std::size_t countOf(const Store& store, const std::string& folder, std::string_view name) {
  const Table* table = Holdings::findTable(name);
  return table == nullptr ? 0 : table->load(store, folder).size();
}

std::string raw(ConstBytes bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::string textOfSets(const Store& store, const std::string& folder,
                       bool (*wanted)(const SetHead& head)) {
  std::string text;
  Holdings::forEachSet(store, folder, [&](const std::string& name, const SetFile& set) {
    if (wanted(set.head())) text += Holdings::set(name, set);
  });
  return text;
}

std::string flowLines(const Store& store, const std::string& folder) {
  const auto file = FlowFile::open(store, folder);
  if (!file) return "";
  std::string text = "  flows: " + Holdings::flowCounts(store, folder) + "\n";
  std::size_t left = shownFlows;
  std::size_t hidden = 0;
  for (std::size_t group = 0; group < flowGroups; ++group) {
    for (std::size_t i = 0; i < file->count(group); ++i) {
      if (left == 0) {
        ++hidden;
        continue;
      }
      --left;
      text += "    " + FlowRecord::text(file->record(group, i)) + "\n";
    }
  }
  return hidden == 0 ? text : text + format("    and %zu more\n", hidden);
}

}  // namespace

std::string rules(const Store& store, const Host& host) {
  return forEachFilter(host, true, [&](std::size_t, const std::string& folder) {
    const std::string text =
        textOfSets(store, folder + "/rulesets", [](const SetHead&) { return true; });
    return text.empty() ? "  no rule sets\n" : text;
  });
}

std::string containers(const Store& store, const Host& host) {
  return forEachFilter(host, false, [&](std::size_t, const std::string& folder) {
    return textOfSets(store, folder + "/addrsets",
                      [](const SetHead& head) { return head.type != 1; });
  });
}

std::string spoofGuards(const Store& store, const Host& host) {
  return forEachFilter(host, true, [&](std::size_t index, const std::string&) {
    std::string text = spoofGuardText(spoofGuardOf(store, host, index));
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 1)) {
      text.insert(at + 1, "  ");
    }
    return "  " + text + "\n";
  });
}

std::string filters(const Store& store, const Host& host) {
  std::string text;
  for (std::size_t i = 0; i < host.filterCount(); ++i) text += Holdings::filter(store, host, i);
  return text.empty() ? "none\n" : text;
}

std::string flows(const Store& store, const Host& host) {
  return forEachFilter(host, true, [&](std::size_t, const std::string& folder) {
    return settingLines(store, folder, {"flows.", "flow-exclusion."}) + flowLines(store, folder);
  });
}

std::string global(const Store& store, const Host& host) {
  std::string text = format("machines with %zu virtual NICs, %zu agents, %zu filters\n",
                            host.nicCount(), host.agents().size(), host.filterCount());
  text += format("memory for a set: %llu bytes\n", static_cast<unsigned long long>(host.memory()));
  for (const Agent& agent : host.agents()) {
    text += format("agent %s: %zu included, %zu excluded\n", printable(agent.name).c_str(),
                   entriesOf(agent.include).size(), entriesOf(agent.exclude).size());
  }
  return text + "settings\n" + settingLines(store, Settings::ofHost, {""});
}

std::string serviceProfiles(const Store& store, const Host& host) {
  return forEachFilter(host, false, [&](std::size_t, const std::string& folder) {
    return tableOf(store, folder, "service-profile");
  });
}

std::string serviceInstances(const Store& store, const Host&) {
  const std::string text = tableOf(store, hostTableFolder, "service-instances");
  return text.empty() ? "none\n" : text;
}

std::string applications(const Store& store, const Host& host) {
  return forEachFilter(host, true, [&](std::size_t, const std::string& folder) {
    return settingLines(store, folder, {"l7.", "names.servers"}) +
           tableOf(store, folder, "attributes") + tableOf(store, folder, "inspections");
  });
}

std::string monitors(const Store& store, const Host& host) {
  return forEachFilter(host, true, [&](std::size_t index, const std::string& folder) {
    return "  agent " + printable(host.agent(index)) +
           (host.isConnected(index) ? ", connected\n" : ", disconnected\n") +
           settingLines(store, folder, {"discovery.", "names.live", "export.", "kif."});
  });
}

std::string timeouts(const Store& store, const Host& host) {
  return forEachFilter(host, true, [&](std::size_t, const std::string& folder) {
    return settingLines(store, folder, {"dfw."});
  });
}

std::string topics(const Store& store, const Host& host) {
  std::string text;
  for (const Agent& agent : host.agents()) {
    std::size_t filters = 0;
    for (std::size_t i = 0; i < host.filterCount(); ++i) filters += host.agent(i) == agent.name;
    for (const char* topic : {"rules", "addrsets", "flows"}) {
      text += format("topic %s of agent %s: %zu filters\n", topic, printable(agent.name).c_str(),
                     filters);
    }
  }
  return text + format("topic instances of the host: %zu\n",
                       countOf(store, hostTableFolder, "service-instances"));
}

std::string ploy(const Store& store, const Host&) {
  std::string text;
  for (const char* name : {"service-table", "nsh-table", "proxy-table", "service-machines"}) {
    text += format("%s: %zu records, in sync\n", name, countOf(store, hostTableFolder, name));
  }
  return text;
}

std::string machines(const Store& store, const Host& host) {
  std::map<std::size_t, std::size_t> containersOfNic;
  for (std::size_t i = 0; i < host.filterCount(); ++i) {
    Holdings::forEachSet(store, host.folderOf(i) + "/addrsets",
                         [&](const std::string&, const SetFile& set) {
                           containersOfNic[host.nicOf(i)] += set.head().type != 1;
                         });
  }
  std::string text;
  for (std::size_t place = 0; place < host.nicCount(); ++place) {
    const Nic nic = host.nic(place);
    text += format("machine %u, %s on %s: %zu containers\n", nic.world, printable(nic.name).c_str(),
                   printable(nic.switchName).c_str(), containersOfNic[place]);
  }
  return text.empty() ? "none\n" : text;
}

std::string threads(const Store& store, const Host& host) {
  std::size_t sets = 0;
  for (std::size_t i = 0; i < host.filterCount(); ++i) {
    sets += store.list(host.folderOf(i) + "/rulesets").size();
  }
  return "thread 1 main: waits for the manager\n" +
         format("thread 2 rule loader: idle, %zu rule sets\n", sets) +
         format("thread 3 flow collector: idle, %zu filters\n", host.filterCount()) +
         format("thread 4 address aggregation: idle, %zu agents\n", host.agents().size()) +
         "thread 5 trace control: answers\n";
}

std::string storedRules(const Store& store, const Host& host) {
  std::string bytes;
  for (std::size_t i = 0; i < host.filterCount(); ++i) {
    Holdings::forEachSet(
        store, host.folderOf(i) + "/rulesets",
        [&](const std::string&, const SetFile& set) { bytes += raw(set.entries()); });
  }
  return bytes;
}

std::string storedSpoofGuards(const Store& store, const Host& host) {
  std::string bytes;
  for (std::size_t i = 0; i < host.filterCount(); ++i) {
    bytes += raw(spoofGuardOf(store, host, i));
  }
  return bytes;
}

std::string storedFilters(const Host& host) {
  std::string bytes;
  for (std::size_t i = 0; i < host.filterCount(); ++i) bytes += raw(host.record(i));
  return bytes;
}

std::string lastMessage(const Store& store) {
  constexpr std::uint32_t messageRequest = 15;
  ByteVector message;
  Journal(store).read([&](const JournalEntry& entry) {
    if (entry.device == Device::firewall && entry.request == messageRequest) {
      message = entry.sent;
      message.resize(std::min<std::uint64_t>(entry.size, JournalEntry::keptLimit));
    }
    return true;
  });
  return raw(message);
}

}  // namespace TarnLab::TraceDumps
