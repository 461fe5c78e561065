#include "TarnFWLibHandle.h"

#include <cstdlib>
#include <new>
#include <utility>

#include "Locks.h"
#include "TarnFWException.h"
#include "TarnFWLibHandleStart.h"
#include "TarnFWLog.h"
#include "TarnFWMsgBufFactory.h"
#include "TarnFWStatus.h"

namespace TarnFirewall {

std::unique_ptr<CTarnFWLibHandle> CTarnFWLibHandle::GetInstance() {
  std::unique_ptr<CTarnFWLibHandle> handle(new (std::nothrow) CTarnFWLibHandle);
  if (handle == nullptr) throw COutOfMemoryException(sizeof(CTarnFWLibHandle));
  handle->msgBuf_ = CTarnFWMsgBufFactory::newMsgBuf(FW_MSGBUF_SIMPLE);
  return handle;
}

CTarnFWLibHandle* CTarnFWLibHandle::GetIoctlInstance() {
  static Locks::Mutex mutex;
  static std::unique_ptr<CTarnFWLibHandle> instance;
  FWStatus_t status = FW_STATUS_OK;
  {
    const Locks::Guard lock(mutex);
    if (instance != nullptr) return instance.get();
    TARNFW_INFO("Initializing tarn library.\n\n");
    const char* items[] = {"FWIODeviceName", "/dev/brq-tarn"};
    fwlibhandle_* handle = nullptr;
    status = initializeLibrary(FW_IO_IOCTL, 2, items, &handle);
    if (status == FW_STATUS_OK) {
      instance.reset(fromLibHandle(handle));
      TARNFW_INFO("Initialized tarn library\n\n");
      return instance.get();
    }
  }
  // After the lock is given back, since the end of the process destroys the mutex.
  TARNFW_ERROR("Failed to initialize tarn library: %s\n\n", statusText(status));
  std::exit(-1);
}

FWStatus_t CTarnFWLibHandle::setIOChannel(std::unique_ptr<CTarnFWIOChannel> channel) {
  if (channel_ != nullptr) {
    TARNFW_INFO("IOChannel has already been initialized\n");
    channel_.reset();
  }
  channel_ = std::move(channel);
  TARNFW_TRACE(FW_COMPONENT_LIBRARY, 0, "Set IOChannel to lib\n");
  return FW_STATUS_OK;
}

FWStatus_t CTarnFWLibHandle::getCommandBuffer(void** buffer, unsigned int size,
                                              CTarnFWMessageMemory* memory, bool* fresh) {
  if (msgBuf_ == nullptr) return FW_STATUS_LIB_NOT_INITIALIZED;
  return msgBuf_->getBuffer(buffer, size, memory, fresh) ? FW_STATUS_OK : FW_STATUS_OUT_OF_MEMORY;
}

bool CTarnFWLibHandle::addCommand(void* buffer, unsigned int size) {
  return msgBuf_ != nullptr && msgBuf_->addCommand(buffer, size);
}

FWStatus_t CTarnFWLibHandle::flushCommandBuffer(void* buffer, unsigned int size, dvs_port_* port,
                                                void* context) {
  if (channel_ == nullptr || msgBuf_ == nullptr) return FW_STATUS_LIB_NOT_INITIALIZED;
  void* message = nullptr;
  unsigned int messageSize = 0;
  if (!msgBuf_->getMessage(buffer, size, &message, &messageSize)) return FW_STATUS_OUT_OF_MEMORY;
  return channel_->sendIOCTL(port, message, messageSize,
                             context != nullptr ? context : defaultContext_);
}

FWStatus_t CTarnFWLibHandle::releaseCommandBuffer(void* buffer, CTarnFWMessageMemory* memory) {
  if (msgBuf_ == nullptr) return FW_STATUS_LIB_NOT_INITIALIZED;
  return msgBuf_->releaseBuffer(buffer, memory) ? FW_STATUS_OK : FW_STATUS_INVALID_ARGUMENT;
}

FWStatus_t CTarnFWLibHandle::resetCommandBuffer(void* buffer) {
  if (msgBuf_ == nullptr) return FW_STATUS_LIB_NOT_INITIALIZED;
  return msgBuf_->resetBuffer(buffer) ? FW_STATUS_OK : FW_STATUS_INVALID_ARGUMENT;
}

}  // namespace TarnFirewall
