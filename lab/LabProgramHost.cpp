// tarnlab init and tarnlab reset.
#include <cerrno>

#include "LabFamily.h"
#include "LabHost.h"
#include "LabJournal.h"
#include "LabProgram.h"
#include "LabText.h"

namespace TarnLab {

int runInit(const Store& store, Arguments arguments) {
  std::optional<unsigned long long> machines;
  std::optional<unsigned long long> memory;
  for (; !arguments.empty(); arguments = arguments.subspan(2)) {
    const std::string option = arguments[0];
    if (option != "--machines" && option != "--memory") {
      return misused("init", "unknown argument " + printable(option));
    }
    if (arguments.size() < 2) return misused("init", option + " needs a number");
    const bool ofMachines = option == "--machines";
    auto& value = ofMachines ? machines : memory;
    value = parseNumber(arguments[1], ofMachines ? Host::machineLimit : std::uint64_t{1} << 40);
    if (!value || *value == 0) {
      return misused("init", option + ": bad number " + printable(arguments[1]));
    }
  }

  store.create();
  const StoreLock lock(store);
  if (store.exists()) {
    complain("there is a lab at " + store.folder() +
             " already: \"tarnlab reset\" makes it fresh again");
    return exitFailed;
  }
  Host host = machines ? Host::generated(static_cast<unsigned>(*machines)) : Host::sample();
  if (memory) host.setMemory(*memory);
  host.save(store);
  fillHost(store, host);
  std::printf("Made a lab with %zu filters at %s.\n", host.filterCount(), store.folder().c_str());
  return exitOk;
}

int runReset(const Store& store, Arguments arguments) {
  if (!arguments.empty()) return misused("reset", "takes no arguments");
  requireLab(store);
  const StoreLock lock(store);
  for (const char* folder : {"filters", "shared"}) store.removeTree(folder);
  for (const char* file : {"faults", "settings"}) store.remove(file);
  fillHost(store, Host::load(store));
  Journal(store).clear();
  return exitOk;
}

}  // namespace TarnLab
