#include "FilterNames.h"

#include <strings.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>

#include "State.h"
#include "TarnFWDirectRequest.h"
#include "TarnFWFilter.h"
#include "TarnFWText.h"
#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

constexpr std::uint32_t kMostFilters = 1000000;

void ask(std::uint32_t request, FWFilterList_& list) {
  std::uint32_t status = 0;
  errno = 0;
  const bool failed = directRequest(FirewallDevice(FW_Ioctl), request, list, &status) != 0;
  if (failed || status != 0) {
    throw StateError(std::string("the filters of this host can't be listed: ") +
                     (failed && errno != 0 ? std::strerror(errno) : FW_StatusToString(status)));
  }
}

}  // namespace

std::vector<std::string> filtersOfAgent(const std::string& agent) {
  FWFilterList_ list{};
  if (agent.size() >= sizeof list.name) throw StateError("the agent's name is too long");
  agent.copy(list.name, sizeof list.name - 1);
  ask(FW_REQUEST_FILTER_COUNT, list);
  const std::uint32_t known = list.count;
  if (known > kMostFilters) throw StateError("the host says that it has too many filters");
  std::vector<std::string> names;
  if (known > 0) {
    const FilterRecords records(
        static_cast<FWFilterRecord_*>(std::calloc(known, sizeof(FWFilterRecord_))));
    if (records == nullptr) throw std::bad_alloc();
    list.bufferLength = static_cast<std::uint32_t>(known * sizeof(FWFilterRecord_));
    list.buffer = addressOf(records.get());
    ask(FW_REQUEST_FILTER_LIST, list);
    for (std::uint32_t i = 0; i < std::min<std::uint32_t>(list.count, known); ++i) {
      const FWFilterRecord_& record = records[i];
      const std::string its(record.agent, fieldLength(record.agent, sizeof record.agent));
      std::string name(record.name, fieldLength(record.name, sizeof record.name));
      // A kernel may list those of other agents as well.
      if (name.empty() || strcasecmp(its.c_str(), agent.c_str()) != 0) continue;
      if (std::find(names.begin(), names.end(), name) == names.end()) {
        names.push_back(std::move(name));
      }
    }
  }
  if (names.empty()) throw StateError("there is no filter of agent " + agent);
  return names;
}
