#include "PolicyFilter.h"

#include <algorithm>
#include <cstring>

using namespace TarnFirewall;

namespace {

constexpr std::size_t kSetName = 38, kRuleSetName = 64;
constexpr std::size_t kRule = 892, kAddress = 144;
constexpr FWStatus_t kBadState = 26, kNoRuleSet = 28, kNoAddrSet = 29;

constexpr unsigned int kQuestions[] = {1, 2, 4, 8, 9, 10, 15, 16, 17, 20, 21, 56, 62};
constexpr unsigned int kChanges[] = {3, 6, 7, 13, 14, 36, 60, 61, 63, 65, 75};

bool isChange(unsigned int command) {
  return std::find(std::begin(kChanges), std::end(kChanges), command) != std::end(kChanges);
}

}  // namespace

PolicyFilter::PolicyFilter(State state) : kernel_(std::move(state)) {
  const auto route = [this](unsigned int command) {
    kernel_.before(command, [this, command](Body body) { return take(command, body); });
  };
  for (const unsigned int command : kQuestions) route(command);
  for (const unsigned int command : kChanges) route(command);
}

FWStatus_t PolicyFilter::take(unsigned int command, Body body) {
  ++requests_;
  const FWStatus_t fault = fault_ ? fault_(requests_) : PolicyKernel::kUsual;
  if (fault != PolicyKernel::kUsual && !carriedOut_) return fault;
  if (!isChange(command)) return fault;
  const FWStatus_t status = change(command, body);
  if (status == 0) changes_.push_back(command);
  return fault != PolicyKernel::kUsual ? fault : status;
}

FWStatus_t PolicyFilter::change(unsigned int command, Body body) {
  switch (command) {
    case 3:
      return createRuleSet(body);
    case 7:
      return destroyRuleSet(body.text(0, kRuleSetName));
    case 13:
    case 75:
      return createSet(body, command == 75);
    case 14:
      return state().sets.erase(body.text(0, kSetName)) == 1 ? 0 : kNoAddrSet;
    case 36:
      state().layer3.clear();
      state().layer2.clear();
      return 0;
    case 60:
      state().ruleSets.clear();
      state().layer3.clear();
      state().layer2.clear();
      return 0;
    case 65:
      state().sets.clear();
      return 0;
    default:
      break;
  }
  const auto at = state().ruleSets.find(body.text(0, kRuleSetName));
  if (at == state().ruleSets.end()) return kNoRuleSet;
  if (command == 6) at->second.rules = {};
  if (command == 63) at->second.jump.clear();
  if (command != 61) return 0;
  const std::string target = body.text(kRuleSetName, kRuleSetName);
  if (!state().ruleSets.contains(target)) return kNoRuleSet;
  at->second.jump = target;
  return 0;
}

FWStatus_t PolicyFilter::createRuleSet(Body body) {
  const std::uint32_t count = body.word(136);
  EXPECT_EQ(body.size, 168 + kRule * count);
  std::vector<FWRule_> rules(count);
  for (std::size_t i = 0; i < count; ++i) {
    std::memcpy(&rules[i], body.at + 168 + kRule * i, kRule);
  }
  const std::string name = body.text(64, kRuleSetName);
  if (!name.empty()) {
    StateRuleSet& set = state().ruleSets[name];
    set.rules = {};
    addRules(set, std::move(rules));
    return 0;
  }
  std::string roots[2];
  for (const FWRule_& rule : rules) {
    roots[(rule.flags & kRuleLayer3) != 0 ? 0 : 1] = referencesOf(rule).jump;
  }
  if (!state().ruleSets.contains(roots[0]) && !state().ruleSets.contains(roots[1])) {
    return kNoRuleSet;
  }
  state().layer3 = roots[0];
  state().layer2 = roots[1];
  return 0;
}

FWStatus_t PolicyFilter::createSet(Body body, bool isContainer) {
  const std::uint32_t count = body.word(46);
  StateSet set;
  set.type = body.word(50);
  if (isContainer) {
    std::vector<std::byte> chain(body.size - 86);
    std::memcpy(chain.data(), body.at + 86, chain.size());
    set.elements = chainElements(chain);
  } else {
    EXPECT_EQ(body.size, 86 + kAddress * count);
    set.addresses.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
      std::memcpy(&set.addresses[i], body.at + 86 + kAddress * i, kAddress);
    }
  }
  settleSet(set);
  state().sets.insert_or_assign(body.text(0, kSetName), std::move(set));
  return 0;
}

FWStatus_t PolicyFilter::destroyRuleSet(const std::string& name) {
  if (!state().ruleSets.contains(name)) return kNoRuleSet;
  if (state().layer3 == name || state().layer2 == name) return kBadState;
  for (const auto& [other, set] : state().ruleSets) {
    if (set.jump == name) return kBadState;
  }
  state().ruleSets.erase(name);
  return 0;
}
