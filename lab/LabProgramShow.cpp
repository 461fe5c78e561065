// tarnlab show: what the host holds.
#include <algorithm>
#include <cstdio>

#include "LabAddressRecord.h"
#include "LabChain.h"
#include "LabFamily.h"
#include "LabFaults.h"
#include "LabFlowFile.h"
#include "LabHost.h"
#include "LabProgram.h"
#include "LabRuleRecord.h"
#include "LabSelector.h"
#include "LabSetFile.h"
#include "LabSettings.h"
#include "LabTableEntry.h"
#include "LabText.h"

namespace TarnLab {

namespace {

constexpr std::string_view sharedPrefix = "shared-addrset-filter-";

using Generation = unsigned long long;

/// Calls the visitor with the name and the set of each file in a folder.
template <typename Visitor>
void forEachSet(const Store& store, const std::string& folder, Visitor visit) {
  for (const std::string& file : store.list(folder)) {
    if (const auto set = SetFile::open(store, folder + "/" + file)) {
      visit(Selector::nameOfFile(file), *set);
    }
  }
}

void showSets(const Store& store, const std::string& folder) {
  forEachSet(store, folder + "/rulesets", [](const std::string& name, const SetFile& set) {
    const SetHead& head = set.head();
    const std::string title = name.empty() ? "root" : "ruleset " + printable(name);
    std::printf("  %s: %u rules, %u snat, %u dnat, generation %llu%s%s\n", title.c_str(),
                head.counts[0], head.counts[1], head.counts[2], Generation{head.generation},
                head.jump.empty() ? "" : ", jumps to ", printable(head.jump).c_str());
  });
  forEachSet(store, folder + "/addrsets", [](const std::string& name, const SetFile& set) {
    const SetHead& head = set.head();
    const std::string title =
        head.type == 1 ? "addrset" : format("container of type %u", head.type);
    std::printf("  %s %s: %u %s, generation %llu\n", title.c_str(), printable(name).c_str(),
                head.counts[0], head.type == 1 ? "addresses" : "elements",
                Generation{head.generation});
  });
}

void showSettings(const Store& store, const std::string& folder) {
  for (const std::string& line : Settings::load(store, folder).lines()) {
    std::printf("  %s\n", line.c_str());
  }
}

/// How many flows there are of each kind.
void showFlows(const Store& store, const std::string& folder) {
  static constexpr const char* words[] = {"of other kinds", "active",  "inactive",
                                          "dropped",        "L2 pass", "L2 drop"};
  const auto file = FlowFile::open(store, folder);
  if (!file) return;
  std::array<unsigned, std::size(words)> counts{};
  for (std::size_t group = 0; group < flowGroups; ++group) {
    for (std::size_t i = 0; i < file->count(group); ++i) {
      const unsigned kind = FlowRecord::kind.get(file->record(group, i));
      ++counts[kind < counts.size() ? kind : 0];
    }
  }
  std::string text;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    const std::size_t kind = (i + 1) % counts.size();
    if (counts[kind] == 0) continue;
    text += (text.empty() ? "" : ", ") + format("%u %s", counts[kind], words[kind]);
  }
  std::printf("  flows: %s\n", text.empty() ? "none" : text.c_str());
}

void showFilter(const Store& store, const Host& host, std::size_t index) {
  const ConstBytes record = host.record(index);
  const std::string vif(getText(record, FilterRecord::vif, FilterRecord::vifSize));
  std::printf("filter %s\n", printable(host.name(index)).c_str());
  std::printf("  agent %s, vnic %u, slow path %u%s%s%s\n", printable(host.agent(index)).c_str(),
              get32(record, FilterRecord::vnicIndex), get32(record, FilterRecord::slowPath),
              vif.empty() ? "" : ", vif ", printable(vif).c_str(),
              host.isConnected(index) ? "" : ", disconnected");
  showFlows(store, host.folderOf(index));
  showSettings(store, host.folderOf(index));
  showSets(store, host.folderOf(index));
}

/// Whether the agent of the firewall includes every virtual NIC of the host.
bool isFirewallOn(const Host& host) {
  const auto place = host.findAgent(Host::firewallAgent, FilterRecord::agentSize);
  if (!place) return false;
  const auto entries = entriesOf(host.agents()[*place].include);
  return std::any_of(entries.begin(), entries.end(),
                     [](const TableEntry& each) { return each.type == TableEntry::includedHost; });
}

void showAgent(const Agent& agent) {
  std::printf("agent %s: %zu included, %zu excluded\n", printable(agent.name).c_str(),
              entriesOf(agent.include).size(), entriesOf(agent.exclude).size());
}

std::string sharedName(const std::string& file) {
  return std::string(sharedPrefix) + Selector::nameOfFile(file);
}

/// Folder of the state of a filter, or of an agent's shared sets. Throws when there is no such.
std::string folderOfFilter(const Store& store, const Host& host, std::string_view name) {
  for (std::size_t i = 0; i < host.filterCount(); ++i) {
    if (host.name(i) == name) return host.folderOf(i);
  }
  for (const std::string& file : store.list("shared")) {
    if (sharedName(file) == name) return "shared/" + file;
  }
  throw std::runtime_error("there is no filter " + printable(name));
}

/// How much there is in the tables of the host.
void countHostTables(const Store& store) {
  for (const Family* family : families()) {
    for (const Table& table : family->hostTables) {
      const std::size_t count = table.load(store, hostTableFolder).size();
      if (count > 0) std::printf("  %s: %zu\n", std::string(table.name).c_str(), count);
    }
  }
}

int showAll(const Store& store, const Host& host) {
  std::printf("lab %s\n", store.folder().c_str());
  if (!isFirewallOn(host)) std::puts("  the distributed firewall is disabled");
  showSettings(store, Settings::ofHost);
  countHostTables(store);
  for (const Agent& agent : host.agents()) showAgent(agent);
  for (std::size_t i = 0; i < host.filterCount(); ++i) showFilter(store, host, i);
  for (const std::string& file : store.list("shared")) {
    std::printf("filter %s\n", printable(sharedName(file)).c_str());
    showSets(store, "shared/" + file);
  }
  const Faults faults = Faults::load(store);
  for (const Fault& fault : faults.all()) std::printf("fault: %s\n", fault.toString().c_str());
  return exitOk;
}

int showOne(const Store& store, const Host& host, std::string_view name) {
  const std::string folder = folderOfFilter(store, host, name);
  for (std::size_t i = 0; i < host.filterCount(); ++i) {
    if (host.name(i) == name) {
      showFilter(store, host, i);
      return exitOk;
    }
  }
  std::printf("filter %s\n", printable(name).c_str());
  showSets(store, folder);
  return exitOk;
}

void showRules(const SetFile& set) {
  for (ConstBytes rest = set.entries(); rest.size() >= RuleRecord::size;
       rest = rest.subspan(RuleRecord::size)) {
    std::printf("  %s\n", RuleRecord::text(rest.first(RuleRecord::size)).c_str());
  }
}

void showEntries(const SetFile& set) {
  if (set.head().type != 1) {
    for (const std::string& element : Chain::texts(set.entries())) {
      std::printf("  %s,\n", element.c_str());
    }
    return;
  }
  for (ConstBytes rest = set.entries(); rest.size() >= AddressRecord::size;
       rest = rest.subspan(AddressRecord::size)) {
    std::printf("  %s,\n", AddressRecord::text(rest.first(AddressRecord::size)).c_str());
  }
}

/// The sets of a kind with what is in them; with a name, that one only.
int showContents(const Store& store, const Host& host, bool rules, Arguments arguments) {
  const std::string folder =
      folderOfFilter(store, host, arguments[0]) + (rules ? "/rulesets" : "/addrsets");
  const bool one = arguments.size() > 1;
  bool found = false;
  forEachSet(store, folder, [&](const std::string& name, const SetFile& set) {
    if (one && name != arguments[1]) return;
    found = true;
    const char* word = rules ? "ruleset" : set.head().type == 1 ? "addrset" : "container";
    std::printf("%s %s {\n", word, printable(name).c_str());
    rules ? showRules(set) : showEntries(set);
    std::puts("}");
  });
  if (one && !found) {
    throw std::runtime_error(std::string("there is no ") + (rules ? "rule set " : "address set ") +
                             printable(arguments[1]));
  }
  return exitOk;
}

/// The tables of an agent that are not empty, with their entries; with a name, that one only.
int showAgentTables(const Agent& agent, Arguments arguments) {
  const bool one = arguments.size() > 1;
  bool found = false;
  for (const auto& [name, table] :
       {std::pair<std::string_view, ConstBytes>{"include", agent.include},
        {"exclude", agent.exclude}}) {
    if (one && name != arguments[1]) continue;
    found = true;
    if (table.empty()) continue;
    std::printf("%s {\n", std::string(name).c_str());
    for (const std::string& line : entryLines(table))
      std::printf("  %s\n", printable(line).c_str());
    std::puts("}");
  }
  if (!found) throw std::runtime_error("there is no table " + printable(arguments[1]));
  return exitOk;
}

/// What is in a table; nothing for an empty one.
void showTable(const Table& table, const Table::Records& records) {
  if (records.empty()) return;
  std::printf("%s {\n", std::string(table.name).c_str());
  for (const ByteVector& record : records) {
    std::string text = table.text(record);
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 1)) {
      text.insert(at + 1, "  ");
    }
    std::printf("  %s\n", text.c_str());
  }
  std::puts("}");
}

/// The tables of a filter, or without one of the host; with a name as well, that one only.
int showTables(const Store& store, const Host& host, Arguments arguments) {
  const bool ofHost = arguments.empty();
  const auto agent = ofHost ? std::nullopt : host.findAgent(arguments[0], FilterRecord::agentSize);
  if (agent) return showAgentTables(host.agents()[*agent], arguments);
  const std::string folder = ofHost ? hostTableFolder : folderOfFilter(store, host, arguments[0]);
  const bool one = arguments.size() > 1;
  bool found = false;
  for (const Family* family : families()) {
    for (const Table& table : ofHost ? family->hostTables : family->tables) {
      if (one && table.name != arguments[1]) continue;
      found = true;
      showTable(table, table.load(store, folder));
    }
  }
  if (one && !found) throw std::runtime_error("there is no table " + printable(arguments[1]));
  return exitOk;
}

}  // namespace

int runShow(const Store& store, Arguments arguments) {
  const std::string_view option = arguments.empty() ? "" : arguments[0];
  const bool tables = option == "--tables";
  const bool contents = option == "--rules" || option == "--addrsets" || tables;
  if (!contents && option.starts_with('-')) {
    return misused("show", "unknown argument " + printable(option));
  }
  const bool ofHost = tables && arguments.size() == 1;
  if (contents && !ofHost && (arguments.size() < 2 || arguments.size() > 3)) {
    return misused("show", std::string(option) + " needs a filter and takes the name of a " +
                               (tables ? "table" : "set"));
  }
  if (!contents && arguments.size() > 1) return misused("show", "takes one filter");

  requireLab(store);
  const Host host = Host::load(store);
  if (tables) return showTables(store, host, arguments.subspan(1));
  if (contents) return showContents(store, host, option == "--rules", arguments.subspan(1));
  return arguments.empty() ? showAll(store, host) : showOne(store, host, arguments[0]);
}

}  // namespace TarnLab
