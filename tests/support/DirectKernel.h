#pragma once

/// A kernel that answers direct requests on the firewall's device by their numbers.

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <vector>

#include "DeviceShim.h"
#include "Expect.h"

class DirectKernel {
 public:
  struct Request {
    unsigned long number;
    std::uint32_t status;  // of the frame, before the call
    Bytes body;            // as it was sent
  };

  /// Writes the reply over the body and returns the frame's status.
  using Answer = std::function<std::uint32_t(std::uint8_t* body)>;

  DirectKernel() {
    DeviceShim::put("/dev/brq-tarn", [this](const DeviceShim::Call& call) {
      return answer(call.request, static_cast<std::uint8_t*>(call.argument));
    });
  }
  ~DirectKernel() { DeviceShim::put("/dev/brq-tarn"); }
  DirectKernel(const DirectKernel&) = delete;
  DirectKernel& operator=(const DirectKernel&) = delete;

  void on(unsigned long number, Answer answer) { answers_[number] = std::move(answer); }

  /// The call fails with this `errno`, as does every request without an answer (`ENOTTY`).
  void fail(unsigned long number, int error) { errors_[number] = error; }

  const std::vector<Request>& requests() const { return requests_; }

 private:
  template <typename Number>
  static Number at(const std::uint8_t* place) {
    Number number;
    std::memcpy(&number, place, sizeof number);
    return number;
  }

  int answer(unsigned long number, std::uint8_t* frame) {
    auto* const body = reinterpret_cast<std::uint8_t*>(at<std::uint64_t>(frame + 12));
    EXPECT_EQ(at<std::uint32_t>(frame), number);
    Request seen{number, at<std::uint32_t>(frame + 4), Bytes(at<std::uint32_t>(frame + 8))};
    if (!seen.body.empty()) std::memcpy(seen.body.data(), body, seen.body.size());
    requests_.push_back(seen);
    const auto found = answers_.find(number);
    if (const int error = errors_.count(number) != 0 ? errors_.at(number)
                          : found == answers_.end()  ? ENOTTY
                                                     : 0) {
      errno = error;
      return -1;
    }
    const std::uint32_t status = found->second(body);
    std::memcpy(frame + 4, &status, sizeof status);
    return 0;
  }

  std::map<unsigned long, Answer> answers_;
  std::map<unsigned long, int> errors_;
  std::vector<Request> requests_;
};
