#include "HandlerKernel.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "tarnfw.h"

using namespace TarnFirewall;

namespace {

bool g_replaced = false;
fwlibhandle_* g_handle = nullptr;

}  // namespace

// The linker sends the handlers' calls of this function here.
extern "C" {
fwlibhandle_* __real_FW_GetDefaultLibHandle();
fwlibhandle_* __wrap_FW_GetDefaultLibHandle();
fwlibhandle_* __wrap_FW_GetDefaultLibHandle() {
  return g_replaced ? g_handle : __real_FW_GetDefaultLibHandle();
}
}

DefaultHandle::DefaultHandle(fwlibhandle_* handle) {
  g_replaced = true;
  g_handle = handle;
}
DefaultHandle::~DefaultHandle() { g_replaced = false; }

HandlerKernel::HandlerKernel() : handle_(kernel_.handle()) {
  kernel_.answerAllWith(
      [this](std::uint8_t* message, unsigned int size) { return answer(message, size); });
}

HandlerKernel::~HandlerKernel() { FW_SetLibPrettyPrinting(nullptr, nullptr); }

void HandlerKernel::fail(unsigned int command, FWStatus_t status, int nth) {
  const auto before = answers_.find(command);
  const Answer otherwise = before != answers_.end() ? before->second : Answer{};
  auto times = std::make_shared<int>(0);
  on(command, [=](Body& body) {
    if (nth == 0 || ++*times == nth) return status;
    return otherwise(body);
  });
}

unsigned int HandlerKernel::timesAsked(unsigned int command) const {
  return static_cast<unsigned int>(std::count(asked_.begin(), asked_.end(), command));
}

FWStatus_t HandlerKernel::answer(std::uint8_t* message, unsigned int size) {
  const unsigned int command = message[24] + 256u * message[25];
  asked_.push_back(command);
  EXPECT_TRUE(kernel_.last().port.has_value());
  const auto found = answers_.find(command);
  FWStatus_t status = FW_STATUS_NOT_SUPPORTED;
  if (found == answers_.end()) {
    ADD_FAILURE() << "command " << command << " has no answer";
  } else {
    const dvs_port_ port = kernel_.last().port.value_or(dvs_port_{});
    Body body{{message + 32, size - 32}, port};
    status = found->second(body);
  }
  std::memcpy(message + 28, &status, sizeof status);
  return 0;
}
