#define TARNFW_SOURCE "TarnFWUtil.cpp"

#include "TarnFWRevalidate.h"

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "TarnFWDirectRequest.h"
#include "TarnFWFilter.h"
#include "TarnFWLog.h"
#include "TarnFWUtil.h"
#include "TarnFWUtilCommand.h"
#include "TarnFWWire.h"

using namespace TarnFirewall;

namespace {

constexpr std::uint32_t kRevalidate = 10;

/// A machine whose filters are to follow the tables.
struct WGTRevalidate_ {
  host32 worldId;                // +0
  std::uint8_t uuid[kUuidSize];  // +4
};
static_assert(sizeof(WGTRevalidate_) == 20 && alignof(WGTRevalidate_) == 1);
static_assert(offsetof(WGTRevalidate_, uuid) == 4);

constexpr std::size_t kListRoom = 32768;

/// By a plain ioctl, so that the log has the caller's line only. `errno` is the ioctl's.
bool revalidate(int fd, std::uint32_t world, const std::uint8_t* uuid) {
  WGTRevalidate_ request{};
  request.worldId = world;
  std::memcpy(request.uuid, uuid, sizeof request.uuid);
  return directRequest(TableDevice(fd), kRevalidate, request) == 0;
}

}  // namespace

UtilStatus_t RevalidateOneVM(int fd, std::uint32_t world, const std::uint8_t* uuid) {
  if (revalidate(fd, world, uuid)) return UTIL_STATUS_OK;
  TARNFW_ERROR("Failed to revalidate vm of world id %d: %s\n\n", static_cast<int>(world),
               std::strerror(errno));
  return UTIL_STATUS_FAILED;
}

UtilStatus_t RevalidateAllVMs(int fd) {
  const std::unique_ptr<char[], FreeMemory> list(static_cast<char*>(std::calloc(kListRoom, 1)));
  if (list == nullptr) {
    TARNFW_ERROR("Out of memory to get vm list\n\n");
    return UTIL_STATUS_FAILED;
  }
  char path[] = "/bin/tarn_vm_list.sh";
  char* const arguments[] = {path, nullptr};
  int length = kListRoom - 1;
  if (RunCommand(path, arguments, list.get(), &length, nullptr, nullptr, nullptr, 0) !=
          UTIL_STATUS_OK ||
      length < 0) {
    TARNFW_ERROR("Failed to get vm list: %d\n\n", length);
    return UTIL_STATUS_FAILED;
  }

  char* rest = list.get();
  while (char* const line = strtok_r(nullptr, "\n", &rest)) {
    if (std::strchr(line, ':') == nullptr) continue;
    char* fields = line;
    const char* const worldText = strtok_r(nullptr, ":", &fields);
    const char* const uuidText = strtok_r(nullptr, ":", &fields);
    long world = 0;
    if (!Str2Long(worldText, 10, &world)) {
      TARNFW_ERROR("Failed to get world id for vm\n\n");
      return UTIL_STATUS_FAILED;
    }
    std::uint8_t uuid[kUuidSize];
    if (!gfystr2uuid(uuid, uuidText)) {
      TARNFW_ERROR("Failed to get vm uuid\n\n");
      return UTIL_STATUS_FAILED;
    }
    if (!revalidate(fd, static_cast<std::uint32_t>(world), uuid)) {
      TARNFW_ERROR("Failed to revalidate vm %s of world %ld: %s\n\n", uuidText, world,
                   std::strerror(errno));
      return UTIL_STATUS_FAILED;
    }
  }
  return UTIL_STATUS_OK;
}
