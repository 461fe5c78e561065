#include "PolicyKernel.h"

#include <algorithm>
#include <cstring>

using namespace TarnFirewall;

namespace {

constexpr std::size_t kHeader = 20, kEnvelope = 12;
constexpr std::size_t kSetName = 38, kRuleSetName = 64;
constexpr FWStatus_t kTooSmall = 9, kNoRuleSet = 28, kNoAddrSet = 29;
constexpr std::uint64_t kGeneration = 7;

/// Names of a map from an index on, into a reply that has room for `max` of them.
template <typename Map>
void putNames(const Map& map, PolicyKernel::Body body, std::size_t length, std::size_t maxAt,
              std::size_t fromAt, std::size_t returnedAt, std::size_t namesAt) {
  std::uint32_t index = 0, returned = 0;
  for (const auto& [name, value] : map) {
    if (index++ < body.word(fromAt) || returned == body.word(maxAt)) continue;
    body.put(namesAt + length * returned++, name.data(), name.size());
  }
  body.put32(returnedAt, returned);
}

/// Records from an index on.
template <typename Record>
void putRecords(const std::vector<Record>& records, PolicyKernel::Body body, std::uint32_t max,
                std::uint32_t from, std::size_t returnedAt, std::size_t recordsAt) {
  std::uint32_t returned = 0;
  for (std::size_t i = from; i < records.size() && returned < max; ++i) {
    body.put(recordsAt + sizeof(Record) * returned++, &records[i], sizeof(Record));
  }
  body.put32(returnedAt, returned);
}

}  // namespace

PolicyKernel::PolicyKernel(State state) : state_(std::move(state)) {
  kernel_.answerAllWith(
      [this](std::uint8_t* message, unsigned int size) { return answerMessage(message, size); });
}

FWStatus_t PolicyKernel::answerMessage(std::uint8_t* message, unsigned int size) {
  const unsigned int commands = message[16] + 256u * message[17];
  EXPECT_GT(commands, 0u);
  std::size_t at = kHeader;
  for (unsigned int i = 0; i < commands && refusal_ == 0; ++i) {
    std::uint32_t length = 0;
    std::memcpy(&length, message + at, sizeof length);
    EXPECT_LE(at + kEnvelope + length, size);
    const unsigned int command = message[at + 4] + 256u * message[at + 5];
    const FWStatus_t status = answerCommand(command, {message + at + kEnvelope, length});
    std::memcpy(message + at + 8, &status, sizeof status);
    at += kEnvelope + length;
  }
  EXPECT_TRUE(at == size || refusal_ != 0);
  return refusal_;
}

FWStatus_t PolicyKernel::answerCommand(unsigned int command, Body body) {
  asked_.push_back(command);
  const auto first = before_.find(command);
  FWStatus_t status = first != before_.end() ? first->second(body) : kUsual;
  if (status == kUsual) status = answer(command, body);
  const auto last = after_.find(command);
  if (status == 0 && last != after_.end()) last->second(body);
  return status;
}

void PolicyKernel::fail(unsigned int command, FWStatus_t status) {
  before(command, [status](Body) { return status; });
}

unsigned int PolicyKernel::timesAsked(unsigned int command) const {
  return static_cast<unsigned int>(std::count(asked_.begin(), asked_.end(), command));
}

FWStatus_t PolicyKernel::answer(unsigned int command, Body body) {
  switch (command) {
    case 1:
      body.put32(0, static_cast<std::uint32_t>(state_.ruleSets.size()));
      return 0;
    case 2:
      putNames(state_.ruleSets, body, kRuleSetName, 0, 4, 8, 12);
      return 0;
    case 4:
      body.put(0, state_.layer3.data(), state_.layer3.size());
      body.put(64, state_.layer2.data(), state_.layer2.size());
      return 0;
    case 20:
      body.put32(4, static_cast<std::uint32_t>(state_.sets.size()));
      return 0;
    case 21:
      putNames(state_.sets, body, kSetName, 4, 8, 12, 16);
      return 0;
    case 8:
    case 9:
    case 10:
    case 62:
      return answerRuleSets(command, body);
    default:
      return answerSets(command, body);
  }
}

FWStatus_t PolicyKernel::answerRuleSets(unsigned int command, Body body) {
  const auto at = state_.ruleSets.find(body.text(0, kRuleSetName));
  if (at == state_.ruleSets.end()) return kNoRuleSet;
  const StateRuleSet& set = at->second;
  switch (command) {
    case 8:
      body.put32(68, static_cast<std::uint32_t>(set.rules.at(body.at[64] & 3).size()));
      return 0;
    case 9:
      body.put32(64, static_cast<std::uint32_t>(set.count()));
      body.put64(76, kGeneration);
      return 0;
    case 10:
      EXPECT_EQ(body.at[72] & 1, 1);
      putRecords(set.rules.at(body.at[74] & 3), body, body.word(64), body.word(68), 76,
                 96 + 4 * std::size_t{body.word(64)});
      return 0;
    default:
      body.put(64, set.jump.data(), set.jump.size());
      return 0;
  }
}

FWStatus_t PolicyKernel::answerSets(unsigned int command, Body body) {
  const auto at = state_.sets.find(body.text(0, kSetName));
  if (at == state_.sets.end()) return kNoAddrSet;
  const StateSet& set = at->second;
  const auto count = static_cast<std::uint32_t>(set.addresses.size() + set.elements.size());
  std::string chain;
  for (const std::string& element : set.elements) chain += element;
  switch (command) {
    case 15:
      body.put32(38, count);
      body.put32(42, set.type);
      body.put32(46, static_cast<std::uint32_t>(set.isAddresses() ? 144 * set.addresses.size()
                                                                  : 12 + chain.size()));
      return 0;
    case 16:
      body.put32(38, count);
      body.put64(50, kGeneration);
      return 0;
    case 17:
      putRecords(set.addresses, body, body.word(42), body.word(46), 50, 70);
      return 0;
    case 56:
      body.put32(70, set.type);
      body.put32(74, count);
      if (body.size < 82 + chain.size()) return kTooSmall;
      body.put32(78, static_cast<std::uint32_t>(chain.size()));
      body.put(82, chain.data(), chain.size());
      return 0;
    default:
      ADD_FAILURE() << "command " << command << " has no answer";
      return FW_STATUS_NOT_SUPPORTED;
  }
}
