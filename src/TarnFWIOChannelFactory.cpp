#include "TarnFWIOChannelFactory.h"

#include <cstdarg>
#include <cstring>
#include <initializer_list>

#include "TarnFWException.h"
#include "TarnFWIOChannelFile.h"
#include "TarnFWIOChannelGeneric.h"
#include "TarnFWIOChannelIOCTL.h"
#include "TarnFWIOChannelMemory.h"
#include "TarnFWIOChannelSocket.h"
#include "TarnFWIoctl.h"

namespace TarnFirewall {

namespace {

/// Ends the reading of variable arguments on every way out.
class Arguments {
 public:
  explicit Arguments(va_list& list) : list_(list) {}
  ~Arguments() { va_end(list_); }
  Arguments(const Arguments&) = delete;
  Arguments& operator=(const Arguments&) = delete;

 private:
  va_list& list_;
};

bool keysAre(unsigned int count, const char** items, std::initializer_list<const char*> keys) {
  if (count != 2 * keys.size()) return false;
  if (count != 0 && items == nullptr) return false;
  for (const char* key : keys) {
    if (*items == nullptr || std::strcmp(*items, key) != 0) return false;
    items += 2;
  }
  return true;
}

/// A value whose text is not text: the address of something of the caller's.
template <typename T>
T* address(const char* value) {
  return reinterpret_cast<T*>(const_cast<char*>(value));
}

}  // namespace

std::unique_ptr<CTarnFWIOChannel> CTarnFWIOChannelFactory::newIOChannel(int type, ...) {
  va_list list;
  va_start(list, type);
  const Arguments arguments(list);
  switch (type) {
    case FW_IO_IOCTL:
      return std::make_unique<CTarnFWIOChannelIOCTL>(CTarnFWIoctl::GetInstance()->descriptor());
    case FW_IO_SOCKET:
    case FW_IO_RIBS: {
      // No socket of kind 1 exists: a channel of type 3 is refused by the socket factory.
      const auto kind = static_cast<Sockets::SocketType_t>(type == FW_IO_SOCKET ? 0 : 1);
      const char* where = va_arg(list, const char*);
      return std::make_unique<CTarnFWIOChannelSocket>(kind, where, va_arg(list, const char*));
    }
    case FW_IO_FILE:
      return std::make_unique<CTarnFWIOChannelFile>(va_arg(list, const char*));
    case FW_IO_MEMORY: {
      void* memory = va_arg(list, void*);
      return std::make_unique<CTarnFWIOChannelMemory>(memory, va_arg(list, unsigned int));
    }
    case FW_IO_GENERIC: {
      const auto* table = va_arg(list, const FWLibGenericIO_*);
      void* initArgument = va_arg(list, void*);
      return std::make_unique<CTarnFWIOChannelGeneric>(table, initArgument, va_arg(list, void**));
    }
    default:
      throw CUnknownIOTypeException(type);
  }
}

std::unique_ptr<CTarnFWIOChannel> create_io_channel(FWIOType_t type, unsigned int count,
                                                    const char** items) {
  const int number = static_cast<int>(type);
  switch (type) {
    case FW_IO_IOCTL:
      // A device name is taken and has no effect: the host chooses the device.
      if (count == 0 || keysAre(count, items, {"FWIODeviceName"})) {
        return CTarnFWIOChannelFactory::newIOChannel(number);
      }
      break;
    case FW_IO_SOCKET:
    case FW_IO_RIBS:
      if (keysAre(count, items, {"FWIOAddress", "FWIOPort"})) {
        return CTarnFWIOChannelFactory::newIOChannel(number, items[1], items[3]);
      }
      break;
    case FW_IO_FILE:
      if (keysAre(count, items, {"FWIOFileName"}) && items[1] != nullptr) {
        return CTarnFWIOChannelFactory::newIOChannel(number, items[1]);
      }
      break;
    case FW_IO_MEMORY:
      if (keysAre(count, items, {"FWIOMemory", "FWIOLength"}) && items[1] != nullptr &&
          items[3] != nullptr) {
        unsigned int length = 0;
        std::memcpy(&length, items[3], sizeof length);
        return CTarnFWIOChannelFactory::newIOChannel(number, address<void>(items[1]), length);
      }
      break;
    case FW_IO_GENERIC:
      if (keysAre(count, items, {"FWIOGenericIO"}) ||
          keysAre(count, items, {"FWIOGenericIO", "FWIOGenericIOInitArg"}) ||
          keysAre(count, items,
                  {"FWIOGenericIO", "FWIOGenericIOInitArg", "FWIOGenericIOContext"})) {
        return CTarnFWIOChannelFactory::newIOChannel(
            number, address<const FWLibGenericIO_>(items[1]),
            count > 2 ? address<void>(items[3]) : nullptr,
            count > 4 ? address<void*>(items[5]) : nullptr);
      }
      break;
  }
  throw CCannotInitializeIOException(number);
}

}  // namespace TarnFirewall
