#include "TableRequests.h"

#include <algorithm>
#include <cerrno>

#include "Devices.h"
#include "TarnFWLog.h"
#include "TarnFWUtilText.h"

using namespace TarnFirewall;

namespace {

WGTEntryFrame frameOf(const char* agent, RequestMemory entries) {
  WGTEntryFrame frame{};
  Strncpy(frame.agent, agent, sizeof frame.agent);
  frame.entries = addressOf(entries.at);
  frame.size = entries.size;
  return frame;
}

}  // namespace

int sendEntries(WGTRequest number, const char* agent, RequestMemory entries) {
  WGTEntryFrame frame = frameOf(agent, entries);
  return directRequest(kTables, number, frame);
}

int askSize(const FilterTable& table, const char* agent, std::uint32_t* size) {
  WGTSizeFrame frame{};
  Strncpy(frame.agent, agent, sizeof frame.agent);
  const int result = directRequest(kTables, table.size, frame);
  *size = frame.size;
  return result;
}

int readEntries(const FilterTable& table, const char* agent, RequestMemory room,
                TableReply* reply) {
  WGTEntryFrame frame = frameOf(agent, room);
  const int result = directRequest(kTables, table.read, frame);
  const std::uint32_t size = frame.size;
  const int error = errno;
  if (size > room.size)
    TARNFW_WARNING("%u bytes of a table returned for room of %u\n", size, room.size);
  errno = error;
  *reply = {size, std::min(size, room.size)};
  return result;
}
