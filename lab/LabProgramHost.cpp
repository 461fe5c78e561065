// tarnlab init, tarnlab reset and tarnlab machines.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <set>

#include "LabFamily.h"
#include "LabHost.h"
#include "LabHostFiles.h"
#include "LabJournal.h"
#include "LabProgram.h"
#include "LabText.h"

namespace TarnLab {

namespace {

/// A host with more flows than this would fill the disk.
constexpr std::uint64_t flowsOfHost = 10000000;

/// What the options of "init" give.
struct Wishes {
  std::optional<unsigned long long> machines, memory, flows;
  bool firewallOff = false;
  bool bare = false;
};

struct NumberOption {
  std::string_view name;
  std::optional<unsigned long long> Wishes::*value;
  std::uint64_t limit;
  std::uint64_t least;
};

constexpr NumberOption numberOptions[] = {
    {"--machines", &Wishes::machines, Host::machineLimit, 1},
    {"--memory", &Wishes::memory, std::uint64_t{1} << 40, 1},
    {"--flows", &Wishes::flows, Host::flowLimit, 0},
};

struct FlagOption {
  std::string_view name;
  bool Wishes::*value;
};

constexpr FlagOption flagOptions[] = {
    {"--firewall-off", &Wishes::firewallOff},
    {"--bare", &Wishes::bare},
};

/// 0, or the exit status of a complaint.
int readWishes(Arguments arguments, Wishes& wishes) {
  while (!arguments.empty()) {
    const std::string option = arguments[0];
    const auto* flag = std::find_if(std::begin(flagOptions), std::end(flagOptions),
                                    [&](const auto& each) { return each.name == option; });
    if (flag != std::end(flagOptions)) {
      wishes.*flag->value = true;
      arguments = arguments.subspan(1);
      continue;
    }
    const auto* found = std::find_if(std::begin(numberOptions), std::end(numberOptions),
                                     [&](const auto& each) { return each.name == option; });
    if (found == std::end(numberOptions)) {
      return misused("init", "unknown argument " + printable(option));
    }
    if (arguments.size() < 2) return misused("init", option + " needs a number");
    auto& value = wishes.*found->value;
    value = parseNumber(arguments[1], found->limit);
    if (!value || *value < found->least) {
      return misused("init", option + ": bad number " + printable(arguments[1]));
    }
    arguments = arguments.subspan(2);
  }
  return exitOk;
}

HostPlan planOf(const Wishes& wishes) {
  HostPlan plan{.firewallOff = wishes.firewallOff, .bare = wishes.bare};
  if (wishes.machines) {
    plan.machines = static_cast<std::uint32_t>(*wishes.machines);
    plan.flows = 0;
  }
  if (wishes.memory) plan.memory = *wishes.memory;
  if (wishes.flows) plan.flows = static_cast<std::uint32_t>(*wishes.flows);
  return plan;
}

/// Is there while a lab is made for the first time, and after that was interrupted.
constexpr const char* unfinished = "unfinished-lab";

void removeContents(const Store& store) {
  for (const char* folder : {"filters", "shared", "tables", HostFiles::root})
    store.removeTree(folder);
  for (const char* file : {"faults", "settings"}) store.remove(file);
}

/// Makes what a lab holds. The host comes last: programs that find it find a whole lab.
void makeContents(const Store& store, const Host& host) {
  fillHost(store, host);
  HostFiles::make(store);
  host.save(store);
}

}  // namespace

int runInit(const Store& store, Arguments arguments) {
  Wishes wishes;
  if (const int status = readWishes(arguments, wishes); status != exitOk) return status;
  const Host host = Host::make(planOf(wishes));
  if (wishes.flows && host.filterCount() * *wishes.flows > flowsOfHost) {
    return misused("init",
                   format("--flows: more than %llu flows for %zu filters",
                          static_cast<unsigned long long>(flowsOfHost), host.filterCount()));
  }

  store.create();
  const StoreLock lock(store);
  if (store.exists()) {
    complain("there is a lab at " + store.folder() +
             " already: \"tarnlab reset\" makes it fresh again");
    return exitFailed;
  }
  // Nothing else is removed: the folder may hold more than a lab.
  if (store.exists(unfinished)) removeContents(store);
  store.replace(unfinished, {});
  makeContents(store, host);
  store.remove(unfinished);
  std::printf("Made a lab with %zu filters at %s.\n", host.filterCount(), store.folder().c_str());
  return exitOk;
}

int runReset(const Store& store, Arguments arguments) {
  if (!arguments.empty()) return misused("reset", "takes no arguments");
  requireLab(store);
  const StoreLock lock(store);
  const Host host = Host::make(Host::load(store).plan());
  removeContents(store);
  makeContents(store, host);
  Journal(store).clear();
  return exitOk;
}

int runMachines(const Store& store, Arguments arguments) {
  if (!arguments.empty()) return misused("machines", "takes no arguments");
  requireLab(store);
  const Host host = Host::load(store);
  std::set<std::uint32_t> worlds;
  for (std::size_t i = 0; i < host.nicCount(); ++i) {
    const Nic nic = host.nic(i);
    if (worlds.insert(nic.world).second) {
      std::printf("%u:%s\n", nic.world, std::string(nic.machine).c_str());
    }
  }
  return exitOk;
}

}  // namespace TarnLab
