// Requests 20 and 21 of the firewall device: how many filters there are, and their records.
#include <cerrno>

#include "LabCallerMemory.h"
#include "LabRequest.h"
#include "LabText.h"

namespace TarnLab {

namespace {

// The body, 116 bytes.
constexpr std::size_t bodySize = 116;
constexpr std::size_t atAgent = 0, agentSize = 100, atCount = 100, atLength = 104, atBuffer = 108;

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

}  // namespace

int answerFilterList(Request& request) {
  if (request.bodyLength != bodySize) {
    return request.refuse(EINVAL,
                          format("body of %u bytes in place of %zu", request.bodyLength, bodySize));
  }
  ByteVector body(bodySize);
  if (!readCaller(request.bodyAddress, body)) {
    return request.refuse(EFAULT, "body cannot be read");
  }
  request.entry.size = bodySize;
  request.entry.sent = JournalEntry::kept(body);

  const std::string_view agent = getText(body, atAgent, agentSize);
  std::vector<std::size_t> chosen;
  for (std::size_t i = 0; i < request.host.filterCount(); ++i) {
    if (agent.empty() || request.host.agent(i) == agent) chosen.push_back(i);
  }

  if (request.number == 20) {
    put32(body, atCount, static_cast<std::uint32_t>(chosen.size()));
  } else {
    // The count of the first request comes back and tells the size of a record.
    const std::uint32_t count = get32(body, atCount);
    const std::uint32_t length = get32(body, atLength);
    const std::uint32_t recordSize = count == 0 ? 0 : length / count;
    if (count == 0 || length % count != 0 ||
        (recordSize != FilterRecord::size && recordSize != FilterRecord::oldSize)) {
      return request.refuse(EINVAL, format("buffer of %u bytes for %u filters", length, count));
    }
    if (chosen.size() > count) chosen.resize(count);
    ByteVector records;
    for (const std::size_t index : chosen) appendRecord(records, request, index, recordSize);
    if (!writeCaller(get64(body, atBuffer), records)) {
      return request.refuse(EFAULT, "buffer cannot be written");
    }
    put32(body, atCount, static_cast<std::uint32_t>(chosen.size()));
    put32(body, atLength, static_cast<std::uint32_t>(records.size()));
  }
  request.entry.answered = JournalEntry::kept(body);
  if (!writeCaller(request.bodyAddress, body)) {
    return request.refuse(EFAULT, "body cannot be written");
  }
  return 0;
}

}  // namespace TarnLab
