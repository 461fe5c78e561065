#include "HeldState.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "TarnFWCmdEnvelope.h"
#include "TarnFWCmdGetAddrSetCount.h"
#include "TarnFWCmdGetAddrSetInfo.h"
#include "TarnFWCmdGetAddrSetList.h"
#include "TarnFWCmdGetAddrSetTypeAndSize.h"
#include "TarnFWCmdGetAddressOfAddrSet.h"
#include "TarnFWCmdGetElementsOfContainer.h"
#include "TarnFWCmdGetRootRuleSet.h"
#include "TarnFWCmdGetRuleCountOfRuleSet.h"
#include "TarnFWCmdGetRuleOfRuleSet.h"
#include "TarnFWCmdGetRuleSetCount.h"
#include "TarnFWCmdGetRuleSetInfo.h"
#include "TarnFWCmdGetRuleSetJump.h"
#include "TarnFWCmdGetRuleSetList.h"
#include "TarnFWException.h"
#include "TarnFWText.h"

using namespace TarnFirewall;

namespace {

/// Names that are asked for beside those of the state: the nameless root, and one too many.
constexpr std::uint32_t kMoreNames = 2;

/// Where the chain of a container stands in the answer.
constexpr std::size_t kChainAt = 70;

struct Question {
  std::unique_ptr<CTarnFWCmd> command;
  std::function<bool(const CTarnFWCmdReply&)> agrees;

  std::size_t size() const { return std::size_t{command->getMsgSize()} + kEnvelopeSize; }
};

template <typename Id>
Id idOf(const std::string& name) {
  Id id{};
  name.copy(id.text, sizeof id.text - 1);
  return id;
}

/// Whether these are the names of the map, and as many as were counted.
template <typename Name, typename Map>
bool sameNames(const CTarnFWReplyRecords<Name>& names, std::uint32_t count, const Map& map) {
  if (names.size() != count || names.reported() != count) return false;
  std::vector<std::string> found;
  for (const Name& name : names) {
    const std::size_t length = fieldLength(name.text, sizeof name.text - 1);
    if (length != 0) found.emplace_back(name.text, length);  // the root is asked for by itself
  }
  std::sort(found.begin(), found.end());
  const auto same = [](const std::string& a, const auto& b) { return a == b.first; };
  return std::equal(found.begin(), found.end(), map.begin(), map.end(), same);
}

bool sameAddresses(const CTarnFWReplyRecords<FWAddress_>& records, const StateSet& wanted) {
  StateSet held;
  if (records.reported() != records.size()) return false;
  held.addresses.resize(records.size());
  records.copyTo(held.addresses.data());
  settleSet(held);
  return held == wanted;
}

bool sameElements(const CTarnFWCmdReply& reply, const StateSet& wanted) {
  StateSet held;
  held.type = wanted.type;
  try {
    held.elements = chainElements(reply.rest(kChainAt));
  } catch (const StateError&) {
    return false;
  }
  settleSet(held);
  return held == wanted;
}

bool sameRecords(const CTarnFWReplyRecords<FWRule_>& records, const StateRuleSet::Rules& wanted) {
  if (records.size() != wanted.size() || records.reported() != wanted.size()) return false;
  for (std::uint32_t i = 0; i < records.size(); ++i) {
    FWRule_ rule = records[i];
    settleRule(rule);
    if (!sameButPosition(rule, wanted[i])) return false;
  }
  return true;
}

/// All that must be asked, in the order in which a filter is read.
class Questions {
 public:
  Questions(const dvs_port_& port, const State& state) : port_(port), state_(state) {
    askNames<CTarnFWCmdGetAddrSetCount, CTarnFWCmdGetAddrSetList>(state.sets, FW_ADDRSET_ANY);
    for (const auto& [name, set] : state.sets) askSet(name, set);
    askNames<CTarnFWCmdGetRuleSetCount, CTarnFWCmdGetRuleSetList>(state.ruleSets);
    for (const auto& [name, set] : state.ruleSets) askRuleSet(name, set);
    ask<CTarnFWCmdGetRootRuleSet>([this](const auto&, const CTarnFWCmdReply& reply) {
      return reply.text(0, sizeof(FWRuleSetID_t)) == state_.layer3 &&
             reply.text(sizeof(FWRuleSetID_t), sizeof(FWRuleSetID_t)) == state_.layer2;
    });
    // What was answered at different times is one state when nothing has changed since.
    std::size_t place = 0;
    for (const auto& [name, set] : state.sets) {
      askMarkAgain<CTarnFWCmdGetAddrSetInfo>(idOf<FWAddrSetID_t>(name), place++);
    }
    for (const auto& [name, set] : state.ruleSets) {
      askMarkAgain<CTarnFWCmdGetRuleSetInfo>(idOf<FWRuleSetID_t>(name), place++);
    }
  }
  Questions(const Questions&) = delete;
  Questions& operator=(const Questions&) = delete;

  const std::vector<Question>& all() const { return questions_; }

 private:
  template <typename Command, typename Agrees, typename... Arguments>
  void ask(Agrees agrees, const Arguments&... arguments) {
    auto command = std::make_unique<Command>(&port_, arguments...);
    const Command& asked = *command;
    questions_.push_back({std::move(command), [&asked, agrees](const CTarnFWCmdReply& reply) {
                            return agrees(asked, reply);
                          }});
  }

  template <typename Count, typename List, typename Map, typename... Arguments>
  void askNames(const Map& map, const Arguments&... arguments) {
    ask<Count>(
        [this](const auto&, const CTarnFWCmdReply& reply) {
          count_ = Count::count(reply);
          return true;
        },
        arguments...);
    const auto most = static_cast<std::uint32_t>(map.size()) + kMoreNames;
    ask<List>(
        [this, &map](const List& list, const CTarnFWCmdReply& reply) {
          return sameNames(list.records(reply), count_, map);
        },
        arguments..., most, 0u);
  }

  /// What changes whenever the set does.
  template <typename Info, typename Id>
  void askMark(const Id& id) {
    const std::size_t place = marks_.size();
    marks_.push_back(0);
    ask<Info>(
        [this, place](const auto&, const CTarnFWCmdReply& reply) {
          marks_[place] = Info::generation(reply);
          return true;
        },
        id);
  }

  template <typename Info, typename Id>
  void askMarkAgain(const Id& id, std::size_t place) {
    ask<Info>(
        [this, place](const auto&, const CTarnFWCmdReply& reply) {
          return Info::generation(reply) == marks_[place];
        },
        id);
  }

  void askSet(const std::string& name, const StateSet& set) {
    const auto id = idOf<FWAddrSetID_t>(name);
    askMark<CTarnFWCmdGetAddrSetInfo>(id);
    const auto count = static_cast<std::uint32_t>(set.addresses.size() + set.elements.size());
    using Type = CTarnFWCmdGetAddrSetTypeAndSize;
    ask<Type>(
        [&set, count](const auto&, const CTarnFWCmdReply& reply) {
          return Type::type(reply) == set.type && Type::count(reply) == count;
        },
        id);
    if (set.isAddresses()) {
      if (count == 0) return;
      using Addresses = CTarnFWCmdGetAddressOfAddrSet;
      ask<Addresses>(
          [&set](const Addresses& asked, const CTarnFWCmdReply& reply) {
            return sameAddresses(asked.records(reply), set);
          },
          id, count, 0u);
      return;
    }
    std::size_t bytes = sizeof(FWtlvChain);
    for (const std::string& element : set.elements) bytes += element.size();
    ask<CTarnFWCmdGetElementsOfContainer>(
        [&set](const auto&, const CTarnFWCmdReply& reply) { return sameElements(reply, set); },
        name, static_cast<FWContainerType>(set.type), count, static_cast<unsigned int>(bytes));
  }

  void askRuleSet(const std::string& name, const StateRuleSet& set) {
    const auto id = idOf<FWRuleSetID_t>(name);
    askMark<CTarnFWCmdGetRuleSetInfo>(id);
    for (const StateRules kind : kStateRuleOrder)
      askRules(id, static_cast<unsigned int>(kind), set.of(kind));
    ask<CTarnFWCmdGetRuleSetJump>(
        [&set](const auto&, const CTarnFWCmdReply& reply) {
          return reply.text(sizeof(FWRuleSetID_t), sizeof(FWRuleSetID_t)) == set.jump;
        },
        id);
  }

  void askRules(const FWRuleSetID_t& id, unsigned int kind, const StateRuleSet::Rules& rules) {
    const auto count = static_cast<std::uint32_t>(rules.size());
    using Count = CTarnFWCmdGetRuleCountOfRuleSet;
    ask<Count>(
        [count](const auto&, const CTarnFWCmdReply& reply) { return Count::count(reply) == count; },
        id, kind);
    if (count == 0) return;
    using Read = CTarnFWCmdGetRuleOfRuleSet;
    ask<Read>(
        [&rules](const Read& asked, const CTarnFWCmdReply& reply) {
          return sameRecords(asked.records(reply), rules);
        },
        id, count, 0u, kind);
  }

  const dvs_port_& port_;
  const State& state_;
  std::vector<Question> questions_;
  std::uint32_t count_ = 0;  // of the names that are listed next
  std::vector<std::uint64_t> marks_;
};

/// A message while it lives.
class Message {
 public:
  explicit Message(CTarnFWLibHandle& library) : library_(library) {}
  ~Message() {
    if (body_ != nullptr) library_.releaseCommandBuffer(body_);
  }
  Message(const Message&) = delete;
  Message& operator=(const Message&) = delete;

  /// Sends the questions; false when they do not reach the kernel.
  bool send(std::span<const Question> questions, std::size_t bytes, dvs_port_ port) {
    if (bytes > std::numeric_limits<unsigned int>::max()) return false;
    bool isFresh = true;
    if (library_.getCommandBuffer(&body_, static_cast<unsigned int>(bytes), nullptr, &isFresh) !=
        FW_STATUS_OK) {
      return false;
    }
    std::size_t used = 0;
    for (const Question& question : questions) {
      const auto room = static_cast<unsigned int>(bytes - used);
      unsigned int written = 0;
      CTarnFWCmd& command = *question.command;
      if (!(isFresh ? command.toFreshMessage(at(used), room, &written)
                    : command.toMessage(at(used), room, &written))) {
        return false;
      }
      library_.addCommand(body_, written);
      used += question.size();
    }
    return library_.flushCommandBuffer(body_, static_cast<unsigned int>(bytes), &port, nullptr) ==
           FW_STATUS_OK;
  }

  /// Whether each was answered, by what agrees.
  bool agrees(std::span<const Question> questions) const {
    std::size_t place = 0;
    for (const Question& question : questions) {
      if (loadRecord<FWCmdEnvelope_>(at(place)).status != FW_STATUS_OK) return false;
      const CTarnFWCmdReply reply(at(place + kEnvelopeSize), question.command->getMsgSize());
      if (!question.agrees(reply)) return false;
      place += question.size();
    }
    return true;
  }

 private:
  std::byte* at(std::size_t place) const { return static_cast<std::byte*>(body_) + place; }

  CTarnFWLibHandle& library_;
  void* body_ = nullptr;
};

/// Sends the questions, as many in a message as it holds.
bool allAgree(CTarnFWLibHandle& library, const dvs_port_& port, std::span<const Question> questions,
              const QuestionLimits& limits) {
  while (!questions.empty()) {
    std::size_t count = 0, bytes = 0;
    while (count < questions.size() && count < limits.questions) {
      const std::size_t size = questions[count].size();
      if (count > 0 && bytes + size > limits.bytes) break;
      bytes += size;
      ++count;
    }
    const auto part = questions.first(count);
    Message message(library);
    if (!message.send(part, bytes, port) || !message.agrees(part)) return false;
    questions = questions.subspan(count);
  }
  return true;
}

}  // namespace

bool filterHolds(fwlibhandle_* library, const dvs_port_& port, const State& state,
                 const QuestionLimits& limits) {
  try {
    const Questions questions(port, state);
    return allAgree(*fromLibHandle(library), port, questions.all(), limits);
  } catch (const CTarnFWException&) {
    return false;
  }
}
