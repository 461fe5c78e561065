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

std::uint32_t HandlerKernel::Body::word(std::size_t offset) const {
  EXPECT_LE(offset + 4, size);
  std::uint32_t value = 0;
  std::memcpy(&value, at + offset, sizeof value);
  return value;
}

std::string HandlerKernel::Body::text(std::size_t offset, std::size_t length) const {
  EXPECT_LE(offset + length, size);
  const char* const field = reinterpret_cast<const char*>(at + offset);
  return std::string(field, strnlen(field, length));
}

void HandlerKernel::Body::put(std::size_t offset, const Bytes& bytes) {
  ASSERT_LE(offset + bytes.size(), size);
  if (bytes.size() != 0) std::memcpy(at + offset, bytes.data(), bytes.size());
}

void HandlerKernel::Body::put32(std::size_t offset, std::uint32_t value) {
  ASSERT_LE(offset + sizeof value, size);
  std::memcpy(at + offset, &value, sizeof value);
}

void HandlerKernel::Body::put64(std::size_t offset, std::uint64_t value) {
  ASSERT_LE(offset + sizeof value, size);
  std::memcpy(at + offset, &value, sizeof value);
}

void HandlerKernel::Body::putText(std::size_t offset, const std::string& text) {
  put(offset, Bytes(text.size()).text(0, text));
}

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
    Body body{message + 32, size - 32, port};
    status = found->second(body);
  }
  std::memcpy(message + 28, &status, sizeof status);
  return 0;
}
