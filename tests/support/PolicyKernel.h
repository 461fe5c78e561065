#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "CommandBody.h"
#include "FakeKernel.h"
#include "State.h"

/// A kernel with one filter that holds a state and answers the questions about it, by offsets of
/// its own. Tests change the answer to any question. The generations are 7, until a test touches
/// them.
class PolicyKernel {
 public:
  /// The body of a request, over which the reply is written.
  using Body = CommandBody;
  using Answer = std::function<TarnFirewall::FWStatus_t(Body)>;

  explicit PolicyKernel(State state);

  /// Puts an answer before the usual one. It may return `kUsual` to leave the question to that.
  static constexpr TarnFirewall::FWStatus_t kUsual = 0xffffffff;
  void before(unsigned int command, Answer answer) { before_[command] = std::move(answer); }

  /// Changes what was answered.
  void after(unsigned int command, std::function<void(Body)> change) {
    after_[command] = std::move(change);
  }

  /// The question fails from now on.
  void fail(unsigned int command, TarnFirewall::FWStatus_t status);

  /// No message reaches it from now on: each ends with this result.
  void refuseMessages(TarnFirewall::FWStatus_t result) { refusal_ = result; }

  State& state() { return state_; }
  TarnFirewall::fwlibhandle_* handle() { return kernel_.handle(); }
  unsigned int timesAsked(unsigned int command) const;

  /// Messages that it got, each with one command or more.
  std::size_t messages() const { return kernel_.messages().size(); }

  /// Commands that it got.
  std::size_t questions() const { return asked_.size(); }

  /// Bytes of the commands in the last message, with their envelopes; a header of 20 is before
  /// them.
  std::size_t bytesOfLastMessage() const { return kernel_.last().bytes.size() - 20; }

 private:
  TarnFirewall::FWStatus_t answerMessage(std::uint8_t* message, unsigned int size);
  TarnFirewall::FWStatus_t answerCommand(unsigned int command, Body body);
  TarnFirewall::FWStatus_t answer(unsigned int command, Body body);
  TarnFirewall::FWStatus_t answerSets(unsigned int command, Body body);
  TarnFirewall::FWStatus_t answerRuleSets(unsigned int command, Body body);

  State state_;
  FakeKernel kernel_;
  std::map<unsigned int, Answer> before_;
  std::map<unsigned int, std::function<void(Body)>> after_;
  std::vector<unsigned int> asked_;
  TarnFirewall::FWStatus_t refusal_ = 0;
};
