#define TARNFW_SOURCE "TarnFWUtil.cpp"

#include "TarnFWFilter.h"

#include <cerrno>
#include <cstring>

#include "TarnFWDirectRequest.h"
#include "TarnFWLog.h"
#include "TarnFWUtilText.h"

TarnFirewall::FilterRecords GetFilterDetailList(int fd, const char* agent, std::uint32_t* count) {
  using namespace TarnFirewall;

  FWFilterList_ list{};
  if (agent != nullptr) Strncpy(list.name, agent, sizeof list.name - 1);
  const FirewallDevice device(fd);
  std::uint32_t status = 0;
  *count = 0;

  if (directRequest(device, FW_REQUEST_FILTER_COUNT, list, &status) != 0) {
    TARNFW_ERROR("ioctl failed: %s\n\n", std::strerror(errno));
    return nullptr;
  }
  if (status != 0) {
    TARNFW_ERROR("ioctl failed to get filter count: %d\n\n", static_cast<int>(status));
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

  list.bufferLength = static_cast<std::uint32_t>(known * sizeof(FWFilterRecord_));
  list.buffer = addressOf(records.get());
  if (directRequest(device, FW_REQUEST_FILTER_LIST, list, &status) != 0) {
    TARNFW_ERROR("ioctl failed: %s\n\n", std::strerror(errno));
    return nullptr;
  }
  if (status != 0) {
    TARNFW_ERROR("ioctl failed to get filters: %d\n\n", static_cast<int>(status));
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
