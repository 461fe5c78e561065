#pragma once

/// Direct requests: one ioctl with a record of its own, without a message around it.
///
/// Each of the three control devices expects another argument. `directRequest` makes it from the
/// record, sends it and gives the device call's result: 0, or -1 with `errno` as the ioctl left it.
///
///     FWFilterList_ list{};
///     directRequest(FirewallDevice(FW_Ioctl), FW_REQUEST_FILTER_COUNT, list);
///
/// Records are written by the caller, cleared first; the kernel writes its reply over them.

#include <sys/ioctl.h>

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "TarnFWTypes.h"

namespace TarnFirewall {

/// Address of memory as it stands in a record.
inline std::uint64_t addressOf(const void* memory) {
  return reinterpret_cast<std::uintptr_t>(memory);
}

/// Memory that a request names. It stays the caller's.
struct RequestMemory {
  void* at = nullptr;
  std::uint32_t size = 0;
};

template <typename Record>
RequestMemory memoryOf(Record& record) {
  static_assert(std::is_trivially_copyable_v<Record> && !std::is_const_v<Record> &&
                !std::is_pointer_v<Record>);
  return {&record, sizeof record};
}

/// How requests reach a device: by a device call, which opens the device on first use and logs what
/// fails, or by an ioctl on a descriptor that is open.
class DeviceLine {
 public:
  using Call = int (*)(int request, void* argument);

  constexpr explicit DeviceLine(Call call) : call_(call) {}
  constexpr explicit DeviceLine(int descriptor) : descriptor_(descriptor) {}

  int send(std::uint32_t number, void* argument) const {
    return call_ != nullptr ? call_(static_cast<int>(number), argument)
                            : ioctl(descriptor_, number, argument);
  }

 private:
  Call call_ = nullptr;
  int descriptor_ = -1;
};

/// The firewall's device. Its requests stand in a `FWIoctlFrame`.
struct FirewallDevice : DeviceLine {
  using DeviceLine::DeviceLine;
};

/// The filter table device. Its requests have no frame: the record is the ioctl's argument.
struct TableDevice : DeviceLine {
  using DeviceLine::DeviceLine;
};

/// The service insertion device. Its requests stand in a `SIIoctlFrame`.
struct InsertionDevice : DeviceLine {
  using DeviceLine::DeviceLine;
};

/// A request to the firewall's device. With `frameStatus` the frame starts with the status that is
/// there, and the frame's status after the call is given back, also when the call has failed: a
/// kernel that did not write it has left it. Without it the frame starts with status 0, and what
/// the kernel writes there is not read: most commands succeed whatever the frame says, and scripts
/// depend on that. Every message of a command goes through here, so it is expanded in place.
inline int directRequest(const FirewallDevice& device, std::uint32_t number, RequestMemory body,
                         std::uint32_t* frameStatus = nullptr) {
  FWIoctlFrame frame{};
  frame.command = number;
  frame.bodyLength = body.size;
  frame.body = addressOf(body.at);
  if (frameStatus == nullptr) return device.send(number, &frame);

  frame.status = *frameStatus;
  const int result = device.send(number, &frame);
  *frameStatus = frame.status;
  return result;
}

/// The same with a record as the body.
template <typename Record>
int directRequest(const FirewallDevice& device, std::uint32_t number, Record& record,
                  std::uint32_t* frameStatus = nullptr) {
  return directRequest(device, number, memoryOf(record), frameStatus);
}

/// A request to the filter table device.
template <typename Record>
int directRequest(const TableDevice& device, std::uint32_t number, Record& record) {
  return device.send(number, memoryOf(record).at);
}

/// A request to the service insertion device, with an input, an output or both:
///
///     directRequest(kInsertion, 12, {}, memoryOf(count));
inline int directRequest(const InsertionDevice& device, std::uint32_t number, RequestMemory input,
                         RequestMemory output) {
  SIIoctlFrame frame{};
  frame.command = number;
  frame.inputLength = input.size;
  frame.outputLength = output.size;
  frame.input = addressOf(input.at);
  frame.output = addressOf(output.at);
  return device.send(number, &frame);
}

}  // namespace TarnFirewall
