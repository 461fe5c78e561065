// Requests 20, 21, 27, 35 and 40 of the firewall device: how many filters there are, their records,
// which flows of a filter are collected, clearing its statistics, and the record of one filter.
#include <cerrno>

#include "LabCallerMemory.h"
#include "LabFamily.h"
#include "LabServiceInsertion.h"
#include "LabStatistics.h"

namespace TarnLab {

namespace {

// The body, 116 bytes.
constexpr std::size_t bodySize = 116;
constexpr Text agent{0, 100, "agent"};
constexpr U32 count{100, "count"}, room{104, "room"}, filled{104, "bytes"};
constexpr U64 buffer{108, "buffer"};

/// Which flows are not collected. Until it is set, what the host was made with counts.
constexpr std::uint64_t asMade = ~0ull;
constexpr NumberSetting flowFlags{"flows.not-collected", asMade};
constexpr std::uint32_t knownFlags = 0x7f;

/// What was counted for the filter, and its rates.
void clearCounters(Bytes record) {
  const auto clear = [&](std::size_t offset, std::size_t size) {
    const Bytes field = part(record, offset, size);
    std::memset(field.data(), 0, field.size());
  };
  clear(FilterRecord::counters, 8 * FilterRecord::counterCount);
  clear(FilterRecord::rates, 4 * FilterRecord::rateCount);
}

/// Appends the filter's record in the size that was asked for.
void appendRecord(ByteVector& records, const Request& request, std::size_t index,
                  std::size_t recordSize) {
  const ConstBytes record = request.host.record(index);
  const std::size_t at = records.size();
  const bool configured = !request.store.list(request.host.folderOf(index) + "/rulesets").empty();
  records.insert(records.end(), record.begin(),
                 record.begin() + static_cast<std::ptrdiff_t>(recordSize));
  const Settings settings = Settings::load(request.store, request.host.folderOf(index));
  if (settings.get(filterCleared)) clearCounters(Bytes(records).subspan(at));
  const std::uint64_t flags = settings.get(flowFlags);
  if (flags != asMade) {
    put32(records, at + FilterRecord::flowFlags, static_cast<std::uint32_t>(flags));
  }
  if (recordSize == FilterRecord::oldSize) {
    // The older record ends inside the profile's field; what is cut off is not sent in part.
    const Bytes tail = part(Bytes(records), at + FilterRecord::profile,
                            FilterRecord::oldSize - FilterRecord::profile);
    std::memset(tail.data(), 0, tail.size());
  } else {
    put32(records, at + FilterRecord::configured, configured ? 1 : 0);
    putText(records, at + FilterRecord::profile, FilterRecord::profileSize,
            serviceProfileOf(request.store, request.host.folderOf(index)));
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

/// Reads the buffer of a request about one filter: a record that has the filter's name. The request
/// counts so many filters. 0 or an errno.
int readRecord(Request& request, const Body& body, std::uint32_t counted, ByteVector& record) {
  if (room.get(body) != FilterRecord::size || count.get(body) != counted) {
    return request.refuse(
        EINVAL, format("buffer of %u bytes for %u filters", room.get(body), count.get(body)));
  }
  return request.readBuffer(buffer.get(body), FilterRecord::size, FilterRecord::size, record);
}

/// The filter of this name and of the agent that the request names.
std::optional<std::size_t> namedFilter(const Request& request, const Body& body,
                                       std::string_view name) {
  for (std::size_t i = 0; i < request.host.filterCount(); ++i) {
    if (request.host.name(i) == name && request.host.agent(i) == agent.get(body)) return i;
  }
  return std::nullopt;
}

/// The buffer has the record of one filter with its name and its flags.
int setFlowFlags(Request& request, Body& body) {
  ByteVector record;
  if (const int error = readRecord(request, body, 0, record)) return error;
  const std::string_view name = getText(record, FilterRecord::name, FilterRecord::nameSize);
  const std::uint32_t flags = get32(record, FilterRecord::flowFlags);
  request.entry.note = format("filter %s, flags 0x%x", printable(name).c_str(), flags);
  if ((flags & ~knownFlags) != 0) return EINVAL;
  const auto index = namedFilter(request, body, name);
  if (!index) return ENOENT;
  Settings settings = Settings::load(request.store, request.host.folderOf(*index));
  settings.set(flowFlags, flags);
  settings.save(request.store, request.host.folderOf(*index));
  return 0;
}

/// The buffer has room for one record, with the filter's name in it.
int readFilter(Request& request, Body& body) {
  ByteVector record;
  if (const int error = readRecord(request, body, 1, record)) return error;
  const std::string name(getText(record, FilterRecord::name, FilterRecord::nameSize));
  request.entry.note = "filter " + name;
  if (name.size() == FilterRecord::nameSize) return EINVAL;
  const auto index = namedFilter(request, body, name);
  if (!index) {
    request.status = Status::noFilter;
    return 0;
  }
  ByteVector found;
  appendRecord(found, request, *index, FilterRecord::size);
  if (const int error = request.writeBuffer(buffer.get(body), found)) return error;
  filled.put(body, static_cast<std::uint32_t>(found.size()));
  return 0;
}

// Request 35
constexpr std::size_t nameSize = 100;
constexpr Name filterName{0, nameSize, "filter", "filter"};

int clearStatistics(Request& request, Body& body) {
  const auto index = request.host.find(filterName.get(body), nameSize - 1);
  if (!index) {
    return request.refuse(ENOENT, "there is no filter " + printable(filterName.get(body)));
  }
  Settings settings = Settings::load(request.store, request.host.folderOf(*index));
  settings.set(filterCleared, true);
  settings.save(request.store, request.host.folderOf(*index));
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
    {.device = Device::firewall,
     .number = 27,
     .title = "set flow collection",
     .size = bodySize,
     .answer = setFlowFlags,
     .asked = agentText},
    {.device = Device::firewall,
     .number = 35,
     .title = "clear statistics",
     .size = nameSize,
     .answer = clearStatistics,
     .request = {filterName}},
    {.device = Device::firewall,
     .number = 40,
     .title = "filter",
     .size = bodySize,
     .answer = readFilter,
     .reply = {count, filled},
     .asked = listText},
};

}  // namespace

constexpr Setting settings[] = {flowFlags, filterCleared};

constinit const Family filterListFamily{.requests = requests, .settings = settings};

}  // namespace TarnLab
