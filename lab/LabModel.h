// The model of the kernel firewall: answers the requests that reach the control devices.
#ifndef TARNLAB_MODEL_H
#define TARNLAB_MODEL_H

#include <signal.h>

#include "LabDevice.h"
#include "LabStore.h"

namespace TarnLab {

class Model {
 public:
  explicit Model(Store store) : store_(std::move(store)) {}

  /// 0 when the device can be opened, else the errno of the open.
  int openDevice(Device device) const;

  /// Answers one request; `argument` is an address of this process. Returns 0, or the errno with
  /// which the ioctl fails; without one, `result` gets what the ioctl returns. What was asked and
  /// answered goes into the lab's log, also a refusal. While an ordered fault holds the request up,
  /// the thread's mask of signals is `duringDelay`, or without one as it is. A signal that was
  /// ordered is raised at the end.
  int request(Device device, std::uint32_t number, std::uint64_t argument,
              const sigset_t* duringDelay = nullptr, int* result = nullptr) const;

 private:
  /// `request` under the lab's lock. `signal` gets the signal that was ordered, if any.
  int answer(Device device, std::uint32_t number, std::uint64_t argument, int* result,
             std::uint32_t& signal) const;

  Store store_;
};

}  // namespace TarnLab

#endif
