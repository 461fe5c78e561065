#define TARNFW_SOURCE "TarnFWUtil.cpp"

#include "TarnFWFilter.h"

#include <sys/ioctl.h>

#include <cerrno>
#include <cstring>

#include "TarnFWLog.h"
#include "TarnFWTypes.h"
#include "TarnFWUtilText.h"

TarnFirewall::FilterRecords GetFilterDetailList(int fd, const char* agent, std::uint32_t* count) {
  using namespace TarnFirewall;

  FWFilterList_ list{};
  if (agent != nullptr) Strncpy(list.name, agent, sizeof list.name - 1);
  FWIoctlFrame frame{};
  frame.bodyLength = sizeof list;
  frame.body = reinterpret_cast<std::uintptr_t>(&list);
  *count = 0;

  frame.command = FW_REQUEST_FILTER_COUNT;
  if (ioctl(fd, FW_REQUEST_FILTER_COUNT, &frame) != 0) {
    TARNFW_ERROR("ioctl failed: %s\n\n", std::strerror(errno));
    return nullptr;
  }
  if (frame.status != 0) {
    TARNFW_ERROR("ioctl failed to get filter count: %d\n\n", static_cast<int>(frame.status));
    return nullptr;
  }

  const std::uint32_t known = list.count;
  if (known == 0) {
    TARNFW_ERROR("there is no filter for agent %s\n\n", agent != nullptr ? agent : "");
    return nullptr;
  }
  if (!itemsFit(known, sizeof(FWFilterRecord_), UINT32_MAX)) {
    TARNFW_ERROR("invalid filter count: %d\n\n", static_cast<int>(known));
    return nullptr;
  }
  FilterRecords records(static_cast<FWFilterRecord_*>(std::calloc(known, sizeof(FWFilterRecord_))));
  if (records == nullptr) {
    TARNFW_ERROR("no memory for getting filters: %d\n\n", static_cast<int>(known));
    return nullptr;
  }

  frame.command = FW_REQUEST_FILTER_LIST;
  list.bufferLength = static_cast<std::uint32_t>(known * sizeof(FWFilterRecord_));
  list.buffer = reinterpret_cast<std::uintptr_t>(records.get());
  if (ioctl(fd, FW_REQUEST_FILTER_LIST, &frame) != 0) {
    TARNFW_ERROR("ioctl failed: %s\n\n", std::strerror(errno));
    return nullptr;
  }
  if (frame.status != 0) {
    TARNFW_ERROR("ioctl failed to get filters: %d\n\n", static_cast<int>(frame.status));
    return nullptr;
  }
  if (list.count > known) {
    TARNFW_WARNING("%u filters returned for room of %u\n", static_cast<unsigned int>(list.count),
                   known);
    list.count = known;
  }
  *count = list.count;
  return records;
}
