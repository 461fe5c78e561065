#include <cerrno>

#include "TarnFWCallFrame.h"
#include "TarnFWDirectRequest.h"
#include "TarnFWException.h"
#include "TarnFWFilter.h"
#include "TarnFWIoctl.h"
#include "TarnFWText.h"
#include "TarnFWUtilText.h"
#include "tarnfw.h"

using namespace TarnFirewall;

extern "C" FWStatus_t FW_AddRemoveFilter(const FWFilterConfiguration_* configuration,
                                         unsigned int worldId, unsigned int filterIndex,
                                         const char* vnic, unsigned int add) {
  return callFrame(__func__, [&]() -> FWStatus_t {
    if (configuration == nullptr || vnic == nullptr) return FW_STATUS_INVALID_ARGUMENT;
    FWAddRemoveFilter_ record{};
    record.configuration = *configuration;
    record.worldId = worldId;
    record.filterIndex = filterIndex;
    Strncpy(record.vnic, vnic, sizeof record.vnic);
    record.add = add;

    const FirewallDevice device([](int request, void* argument) {
      return CTarnFWIoctl::GetInstance()->sendIoctl(request, argument);
    });
    std::uint32_t status = FW_STATUS_OK;
    if (directRequest(device, FW_REQUEST_ADD_REMOVE_FILTER, record, &status) != 0)
      throw CIoctlException(formatText("ioctl failed, errno=%d", errno), errno);
    return status;
  });
}
