// Requests 20 and 21 of the firewall device: how many filters there are, and their records.
#include <cerrno>

#include "LabCallerMemory.h"
#include "LabFamily.h"

namespace TarnLab {

namespace {

// The body, 116 bytes.
constexpr std::size_t bodySize = 116;
constexpr Text agent{0, 100, "agent"};
constexpr U32 count{100, "count"}, room{104, "room"}, filled{104, "bytes"};
constexpr U64 buffer{108, "buffer"};

/// Appends the filter's record in the size that was asked for.
void appendRecord(ByteVector& records, const Request& request, std::size_t index,
                  std::size_t recordSize) {
  const ConstBytes record = request.host.record(index);
  const std::size_t at = records.size();
  const bool configured = !request.store.list(Host::folderOf(index) + "/rulesets").empty();
  records.insert(records.end(), record.begin(),
                 record.begin() + static_cast<std::ptrdiff_t>(recordSize));
  if (recordSize == FilterRecord::oldSize) {
    // The older record ends inside the profile's field; what is cut off is not sent in part.
    const Bytes tail = part(Bytes(records), at + FilterRecord::profile,
                            FilterRecord::oldSize - FilterRecord::profile);
    std::memset(tail.data(), 0, tail.size());
  } else {
    put32(records, at + FilterRecord::configured, configured ? 1 : 0);
  }
}

/// The filters of the agent that a request names, or all of them.
std::vector<std::size_t> chosenFilters(const Request& request, const Body& body) {
  const std::string_view wanted = agent.get(body);
  std::vector<std::size_t> chosen;
  for (std::size_t i = 0; i < request.host.filterCount(); ++i) {
    if (wanted.empty() || request.host.agent(i) == wanted) chosen.push_back(i);
  }
  return chosen;
}

int countFilters(Request& request, Body& body) {
  count.put(body, static_cast<std::uint32_t>(chosenFilters(request, body).size()));
  return 0;
}

int listFilters(Request& request, Body& body) {
  // The count of the first request comes back; the size of a record follows from it.
  const std::uint32_t most = count.get(body);
  const std::uint32_t length = room.get(body);
  const std::uint32_t recordSize = most == 0 ? 0 : length / most;
  if (most == 0 || length % most != 0 ||
      (recordSize != FilterRecord::size && recordSize != FilterRecord::oldSize)) {
    return request.refuse(EINVAL, format("buffer of %u bytes for %u filters", length, most));
  }
  std::vector<std::size_t> chosen = chosenFilters(request, body);
  if (chosen.size() > most) chosen.resize(most);
  ByteVector records;
  for (const std::size_t index : chosen) appendRecord(records, request, index, recordSize);
  if (!writeCaller(buffer.get(body), records)) {
    return request.refuse(EFAULT, "buffer cannot be written");
  }
  count.put(body, static_cast<std::uint32_t>(chosen.size()));
  filled.put(body, static_cast<std::uint32_t>(records.size()));
  return 0;
}

std::string agentText(ConstBytes body) {
  const std::string_view wanted = agent.get(body);
  return wanted.empty() ? " of every agent" : " of " + printable(wanted);
}

std::string listText(ConstBytes body) {
  return agentText(body) + " (" + fieldsText({count, room}, body) + ")";
}

constexpr DirectKind requests[] = {
    {.device = Device::firewall,
     .number = 20,
     .title = "number of filters",
     .size = bodySize,
     .answer = countFilters,
     .reply = {count},
     .asked = agentText},
    {.device = Device::firewall,
     .number = 21,
     .title = "filters",
     .size = bodySize,
     .answer = listFilters,
     .reply = {count, filled},
     .asked = listText},
};

}  // namespace

constinit const Family filterListFamily{.requests = requests};

}  // namespace TarnLab
