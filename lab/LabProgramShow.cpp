// tarnlab show: what the host holds.
#include <cstdio>

#include "LabFaults.h"
#include "LabHost.h"
#include "LabProgram.h"
#include "LabText.h"

namespace TarnLab {

namespace {

void showFilter(const Host& host, std::size_t index) {
  const ConstBytes record = host.record(index);
  const std::string vif(getText(record, FilterRecord::vif, FilterRecord::vifSize));
  std::printf("filter %s\n", printable(host.name(index)).c_str());
  std::printf("  agent %s, vnic %u, slow path %u%s%s\n", printable(host.agent(index)).c_str(),
              get32(record, FilterRecord::vnicIndex), get32(record, FilterRecord::slowPath),
              vif.empty() ? "" : ", vif ", printable(vif).c_str());
}

}  // namespace

int runShow(const Store& store, Arguments arguments) {
  if (!arguments.empty()) return misused("show", "unknown argument " + printable(arguments[0]));
  requireLab(store);
  const StoreLock lock(store);
  const Host host = Host::load(store);
  std::printf("lab %s\n", store.folder().c_str());
  for (std::size_t i = 0; i < host.filterCount(); ++i) showFilter(host, i);
  const Faults faults = Faults::load(store);
  for (const Fault& fault : faults.all()) std::printf("fault: %s\n", fault.toString().c_str());
  return exitOk;
}

}  // namespace TarnLab
