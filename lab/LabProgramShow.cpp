// tarnlab show: what the host holds.
#include <sys/stat.h>

#include <algorithm>
#include <cstdio>

#include "LabFamily.h"
#include "LabFaults.h"
#include "LabHoldings.h"
#include "LabHost.h"
#include "LabHostFiles.h"
#include "LabPeer.h"
#include "LabProgram.h"
#include "LabSelector.h"
#include "LabSetFile.h"
#include "LabTableEntry.h"
#include "LabText.h"

namespace TarnLab {

namespace {

constexpr std::string_view sharedPrefix = "shared-addrset-filter-";

void print(const std::string& text) { std::fwrite(text.data(), 1, text.size(), stdout); }

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
  print(Holdings::settings(store, Settings::ofHost));
  countHostTables(store);
  for (const Agent& agent : host.agents()) showAgent(agent);
  for (std::size_t i = 0; i < host.filterCount(); ++i) print(Holdings::filter(store, host, i));
  for (const std::string& file : store.list("shared")) {
    std::printf("filter %s\n", printable(sharedName(file)).c_str());
    print(Holdings::sets(store, "shared/" + file));
  }
  const Faults faults = Faults::load(store);
  for (const Fault& fault : faults.all()) std::printf("fault: %s\n", fault.toString().c_str());
  return exitOk;
}

/// The files below a folder of the host, with their sizes. Sockets are those of the peers.
void showFiles(const Store& store, const std::string& folder) {
  for (const std::string& name : store.list(HostFiles::fileOf(folder))) {
    const std::string path = folder + "/" + name;
    struct stat status;
    if (::lstat(store.path(HostFiles::fileOf(path)).c_str(), &status) != 0) continue;
    if (S_ISDIR(status.st_mode)) showFiles(store, path);
    if (!S_ISREG(status.st_mode)) continue;
    std::printf("file %s: %lld bytes\n", printable(path).c_str(),
                static_cast<long long>(status.st_size));
  }
}

/// What the peers are set to, how they fail, and the files that they and the programs have made.
int showPeers(const Store& store, const Host& host) {
  const Faults faults = Faults::load(store);
  for (const DeviceNode& peer : peerNodes) {
    std::printf("peer %s at %s\n", std::string(peer.name).c_str(), std::string(peer.path).c_str());
    const std::string state = Peer::state(store, host, peer.device);
    for (std::size_t at = 0, end; (end = state.find('\n', at)) != std::string::npos; at = end + 1) {
      std::printf("  %s\n", state.substr(at, end - at).c_str());
    }
    for (const Fault& fault : faults.all()) {
      if (fault.strikes(peer.device)) std::printf("  fault: %s\n", fault.toString().c_str());
    }
  }
  showFiles(store, "");
  return exitOk;
}

int showOne(const Store& store, const Host& host, std::string_view name) {
  const std::string folder = folderOfFilter(store, host, name);
  for (std::size_t i = 0; i < host.filterCount(); ++i) {
    if (host.name(i) == name) {
      print(Holdings::filter(store, host, i));
      return exitOk;
    }
  }
  std::printf("filter %s\n", printable(name).c_str());
  print(Holdings::sets(store, folder));
  return exitOk;
}

/// The sets of a kind with what is in them; with a name, that one only.
int showContents(const Store& store, const Host& host, bool rules, Arguments arguments) {
  const std::string folder =
      folderOfFilter(store, host, arguments[0]) + (rules ? "/rulesets" : "/addrsets");
  const bool one = arguments.size() > 1;
  bool found = false;
  Holdings::forEachSet(store, folder, [&](const std::string& name, const SetFile& set) {
    if (one && name != arguments[1]) return;
    found = true;
    print(Holdings::set(name, set));
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
      print(Holdings::table(store, folder, table));
    }
  }
  if (one && !found) throw std::runtime_error("there is no table " + printable(arguments[1]));
  return exitOk;
}

}  // namespace

int runShow(const Store& store, Arguments arguments) {
  const std::string_view option = arguments.empty() ? "" : arguments[0];
  const bool tables = option == "--tables";
  const bool peers = option == "--peers";
  const bool contents = option == "--rules" || option == "--addrsets" || tables;
  if (!contents && !peers && option.starts_with('-')) {
    return misused("show", "unknown argument " + printable(option));
  }
  const bool ofHost = tables && arguments.size() == 1;
  if (contents && !ofHost && (arguments.size() < 2 || arguments.size() > 3)) {
    return misused("show", std::string(option) + " needs a filter and takes the name of a " +
                               (tables ? "table" : "set"));
  }
  if (peers && arguments.size() > 1) return misused("show", "--peers takes no filter");
  if (!contents && arguments.size() > 1) return misused("show", "takes one filter");

  requireLab(store);
  const Host host = Host::load(store);
  if (peers) return showPeers(store, host);
  if (tables) return showTables(store, host, arguments.subspan(1));
  if (contents) return showContents(store, host, option == "--rules", arguments.subspan(1));
  return arguments.empty() ? showAll(store, host) : showOne(store, host, arguments[0]);
}

}  // namespace TarnLab
