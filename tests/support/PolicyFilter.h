#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "PolicyKernel.h"

/// A filter that changes, too: the commands that make, change and remove, by offsets of its own.
/// What a kernel refuses is refused. Any request may be made to fail.
class PolicyFilter {
 public:
  explicit PolicyFilter(State state);

  State& state() { return kernel_.state(); }
  TarnFirewall::fwlibhandle_* handle() { return kernel_.handle(); }

  /// Called for each request with its number, from 1 on. Any status but `PolicyKernel::kUsual` is
  /// the answer then, and with `carriedOut` the request is carried out all the same.
  using Fault = std::function<TarnFirewall::FWStatus_t(unsigned int request)>;
  void setFault(Fault fault, bool carriedOut) {
    fault_ = std::move(fault);
    carriedOut_ = carriedOut;
    requests_ = 0;
  }
  void clearFault() { setFault(nullptr, false); }

  unsigned int requests() const { return requests_; }

  /// Messages, each with one request or more.
  std::size_t messages() const { return kernel_.messages(); }

  /// Numbers of the commands that changed something.
  const std::vector<unsigned int>& changes() const { return changes_; }

 private:
  using Body = PolicyKernel::Body;

  TarnFirewall::FWStatus_t take(unsigned int command, Body body);
  TarnFirewall::FWStatus_t change(unsigned int command, Body body);
  TarnFirewall::FWStatus_t createRuleSet(Body body);
  TarnFirewall::FWStatus_t createSet(Body body, bool isContainer);
  TarnFirewall::FWStatus_t destroyRuleSet(const std::string& name);

  PolicyKernel kernel_;
  Fault fault_;
  bool carriedOut_ = false;
  unsigned int requests_ = 0;
  std::vector<unsigned int> changes_;
};
