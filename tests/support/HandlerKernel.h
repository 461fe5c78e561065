#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "CommandBody.h"
#include "FakeKernel.h"

/// While it lives, the default library handle of the program's handlers is this one, null too.
class DefaultHandle {
 public:
  explicit DefaultHandle(TarnFirewall::fwlibhandle_* handle);
  ~DefaultHandle();
  DefaultHandle(const DefaultHandle&) = delete;
  DefaultHandle& operator=(const DefaultHandle&) = delete;
};

/// A kernel that answers the handlers by command number. What no answer was given for fails the
/// test.
class HandlerKernel {
 public:
  /// Body of a request, over which the reply is written.
  struct Body : CommandBody {
    const TarnFirewall::dvs_port_& port;
  };
  using Answer = std::function<TarnFirewall::FWStatus_t(Body&)>;

  HandlerKernel();

  /// Takes away the printer that a handler leaves to its process.
  ~HandlerKernel();

  /// How a command is answered from now on.
  void on(unsigned int command, Answer answer) { answers_[command] = std::move(answer); }

  /// The command fails with a status, every time or only the `nth` time from now on, which counts
  /// from 1 and the three tries of a busy kernel one by one.
  void fail(unsigned int command, TarnFirewall::FWStatus_t status, int nth = 0);

  /// The answer of a command as it stands, for another one that changes a part of it.
  Answer answerTo(unsigned int command) const { return answers_.at(command); }

  /// Numbers of the commands so far.
  const std::vector<unsigned int>& asked() const { return asked_; }
  unsigned int timesAsked(unsigned int command) const;

  FakeKernel& kernel() { return kernel_; }

 private:
  TarnFirewall::FWStatus_t answer(std::uint8_t* message, unsigned int size);

  FakeKernel kernel_;
  DefaultHandle handle_;
  std::map<unsigned int, Answer> answers_;
  std::vector<unsigned int> asked_;
};
