#include "StateFilter.h"

#include <algorithm>
#include <functional>
#include <optional>

#include "LanguageText.h"
#include "Options.h"
#include "TarnFWCmdGetElementsOfContainer.h"
#include "TarnFWCmdRun.h"
#include "TarnFWText.h"
#include "TarnFWUtilFilter.h"

using namespace TarnFirewall;

namespace {

/// Entries in one answer, so that a request is some megabytes at most.
constexpr unsigned int kRulesAtOnce = 2000;
constexpr unsigned int kAddressesAtOnce = 10000;
constexpr unsigned int kNamesAtOnce = 5000;
constexpr int kTries = 3;

/// Where the chain of a container stands in the answer.
constexpr std::size_t kChainAt = 70;

/// The filter was changed between two questions.
struct Changed {};

/// Reads a filter once. A failure is a `StateError`, a change in between a `Changed`.
class Reader {
 public:
  Reader(fwlibhandle_* library, const dvs_port_& port, const std::string& filter,
         PurgedRuleSets purged)
      : library_(library), port_(port), filter_(filter), purged_(purged) {}

  State read() {
    State state;
    const std::vector<std::string> sets = setNames();
    const std::vector<std::string> ruleSets = ruleSetNames();
    readRoot(state);
    for (const std::string& name : sets) readSet(state, name);
    for (const std::string& name : ruleSets) readRuleSet(state, name);
    // What was read at different times is one state when nothing has changed since: nothing is new,
    // nothing is another one, and the root is the same.
    if (setNames() != sets || ruleSetNames() != ruleSets) throw Changed();
    for (const auto& [name, mark] : ruleSetMarks_) {
      if (ruleSetMark(name) != mark) throw Changed();
    }
    for (const auto& [name, mark] : setMarks_) {
      if (setMark(name) != mark) throw Changed();
    }
    State now;
    readRoot(now);
    if (now.layer3 != state.layer3 || now.layer2 != state.layer2) throw Changed();
    return state;
  }

 private:
  [[noreturn]] void fail(const std::string& question, FWStatus_t status) const {
    throw StateError("filter " + filter_ + ": " + question + " failed: " + statusReason(status));
  }

  void check(FWStatus_t status, const std::string& question) const {
    if (status != FW_STATUS_OK) fail(question, status);
  }

  /// What is asked of one set, which may have been destroyed since its name was read.
  void checkSet(FWStatus_t status, const std::string& question, const std::string& name) const {
    if (status == FW_STATUS_NO_ADDRSET || status == FW_STATUS_NO_RULESET) throw Changed();
    if (status != FW_STATUS_OK) fail(question + " of " + shownName(name), status);
  }

  [[noreturn]] void refuseCount(const std::string& what, std::uint64_t count) const {
    throw StateError(formatText("filter %s: it says that it has %llu %s, which is not believed",
                                filter_.c_str(), static_cast<unsigned long long>(count),
                                what.c_str()));
  }

  /// Reads a list page by page up to `count` entries. `ask(from, records, &returned)` gives a page
  /// of at most `page` records. Fewer than were counted mean a change.
  template <typename Record, typename Ask>
  std::vector<Record> pages(std::uint32_t count, unsigned int page, Ask ask) const {
    std::vector<Record> all;
    while (all.size() < count) {
      const auto wanted =
          static_cast<unsigned int>(std::min<std::size_t>(page, count - all.size()));
      const std::size_t before = all.size();
      all.resize(before + wanted);
      unsigned int returned = 0;
      ask(static_cast<unsigned int>(before), wanted, all.data() + before, &returned);
      if (returned < wanted) throw Changed();
    }
    return all;
  }

  std::vector<std::string> setNames() const {
    unsigned int count = 0;
    check(FW_GetAddrSetCount(library_, &port_, nullptr, FW_ADDRSET_ANY, &count),
          "counting its address sets");
    if (count > kMostSets) refuseCount("address sets", count);
    return names<FWAddrSetID_t>(count, [&](unsigned int from, unsigned int max, FWAddrSetID_t* to,
                                           unsigned int* returned) {
      check(FW_GetAddrSetList(library_, &port_, nullptr, FW_ADDRSET_ANY, max, from, to, returned),
            "listing its address sets");
    });
  }

  std::vector<std::string> ruleSetNames() const {
    unsigned int count = 0;
    check(FW_GetRuleSetCount(library_, &port_, nullptr, &count), "counting its rule sets");
    if (count > kMostSets) refuseCount("rule sets", count);
    return names<FWRuleSetID_t>(
        count, [&](unsigned int from, unsigned int max, FWRuleSetID_t* to, unsigned int* returned) {
          check(FW_GetRuleSetList(library_, &port_, nullptr, max, from, to, returned),
                "listing its rule sets");
        });
  }

  template <typename Name, typename Ask>
  std::vector<std::string> names(std::uint32_t count, Ask ask) const {
    std::vector<std::string> found;
    for (const Name& name : pages<Name>(count, kNamesAtOnce, ask)) {
      const std::size_t length = fieldLength(name.text, sizeof name.text);
      // The root is asked for by a request of its own.
      if (length != 0) found.emplace_back(name.text, length);
    }
    return found;
  }

  // ---- address sets and containers

  static FWAddrSetID_t setID(const std::string& name) {
    FWAddrSetID_t id{};
    name.copy(id.text, sizeof id.text - 1);
    return id;
  }

  /// What changes whenever a set does.
  std::uint64_t setMark(const std::string& name) const {
    const FWAddrSetID_t id = setID(name);
    unsigned int count = 0;
    std::uint64_t realized = 0, generation = 0;
    checkSet(FW_GetAddrSetInfo(library_, &port_, nullptr, &id, &count, &realized, &generation),
             "asking for the generation", name);
    return generation;
  }

  void readSet(State& state, const std::string& name) {
    setMarks_.emplace_back(name, setMark(name));
    const FWAddrSetID_t id = setID(name);
    unsigned int type = 0, count = 0, size = 0;
    checkSet(FW_GetAddrSetTypeAndSize(library_, &port_, nullptr, &id, &type, &count, &size),
             "asking for the type", name);
    StateSet set;
    set.type = type;
    if (set.isAddresses()) {
      addresses_ += count;
      if (addresses_ > kMostAddresses) refuseCount("addresses", addresses_);
      set.addresses = pages<FWAddress_>(
          count, kAddressesAtOnce,
          [&](unsigned int from, unsigned int max, FWAddress_* to, unsigned int* returned) {
            checkSet(
                FW_GetAddressOfAddrSet(library_, &port_, nullptr, &id, max, from, to, returned),
                "reading the addresses", name);
          });
    } else {
      elementBytes_ += size;
      if (elementBytes_ > kMostElementBytes) refuseCount("bytes of elements", elementBytes_);
      set.elements = elementsOf(name, type, count, size);
    }
    settleSet(set);
    state.sets.insert_or_assign(name, std::move(set));
  }

  /// The flat function gives the elements as texts only, from which not all of them can be told.
  std::vector<std::string> elementsOf(const std::string& name, unsigned int type,
                                      unsigned int count, unsigned int size) const {
    std::vector<std::string> elements;
    FWStatus_t status = FW_STATUS_OK;
    try {
      CTarnFWCmdGetElementsOfContainer command(&port_, name, static_cast<FWContainerType>(type),
                                               count, size);
      status = ::TarnFirewall::run(
          *fromLibHandle(library_), command, nullptr,
          [&](const CTarnFWCmdReply& reply) { elements = chainElements(reply.rest(kChainAt)); });
    } catch (const StateError& e) {
      throw StateError("filter " + filter_ + ": reading the elements of " + shownName(name) +
                       " failed: " + e.what());
    } catch (const CTarnFWException& e) {
      fail("reading the elements of " + shownName(name), static_cast<FWStatus_t>(e.retcode()));
    }
    checkSet(status, "reading the elements", name);
    return elements;
  }

  // ---- rule sets

  static FWRuleSetID_t ruleSetID(const std::string& name) {
    FWRuleSetID_t id{};
    name.copy(id.text, sizeof id.text - 1);
    return id;
  }

  /// Nothing for a rule set that is being purged and left out.
  std::optional<std::uint64_t> ruleSetMark(const std::string& name) const {
    const FWRuleSetID_t id = ruleSetID(name);
    unsigned int count = 0;
    std::uint64_t realized = 0, generation = 0;
    const FWStatus_t status =
        FW_GetRuleSetInfo(library_, &port_, nullptr, &id, &count, &realized, &generation);
    if (status == FW_STATUS_BAD_STATE && purged_ == PurgedRuleSets::leaveOut) return {};
    checkSet(status, "asking for the generation", name);
    return generation;
  }

  void readRuleSet(State& state, const std::string& name) {
    const std::optional<std::uint64_t> mark = ruleSetMark(name);
    if (!mark) return;
    ruleSetMarks_.emplace_back(name, mark);
    const FWRuleSetID_t id = ruleSetID(name);
    StateRuleSet set;
    for (const StateRules kind : kStateRuleOrder) {
      for (FWRule_& rule : readRules(id, name, kind)) {
        settleRule(rule);
        set.of(kind).push_back(rule);
      }
    }
    FWRuleSetID_t target{};
    const FWStatus_t status = FW_GetRuleSetJump(library_, &port_, nullptr, &id, &target);
    checkSet(status, "asking for the jump", name);
    set.jump.assign(target.text, fieldLength(target.text, sizeof target.text));
    state.ruleSets.insert_or_assign(name, std::move(set));
  }

  std::vector<FWRule_> readRules(const FWRuleSetID_t& id, const std::string& name,
                                 StateRules rules) {
    const auto kind = static_cast<unsigned int>(rules);
    unsigned int count = 0;
    checkSet(FW_GetRuleCountOfRuleSet(library_, &port_, nullptr, &id, kind, &count),
             "counting the rules", name);
    rules_ += count;
    if (rules_ > kMostRules) refuseCount("rules", rules_);
    return pages<FWRule_>(
        count, kRulesAtOnce,
        [&](unsigned int from, unsigned int max, FWRule_* to, unsigned int* returned) {
          checkSet(FW_GetRuleOfRuleSet(library_, &port_, nullptr, kind, max, from, &id, nullptr, to,
                                       returned),
                   "reading the rules", name);
        });
  }

  void readRoot(State& state) const {
    FWRuleSetID_t layer3{};
    FWRuleSetID_t layer2{};
    check(FW_GetRootRuleSet(library_, &port_, nullptr, &layer3, &layer2), "asking for its root");
    state.layer3.assign(layer3.text, fieldLength(layer3.text, sizeof layer3.text));
    state.layer2.assign(layer2.text, fieldLength(layer2.text, sizeof layer2.text));
  }

  fwlibhandle_* library_;
  const dvs_port_& port_;
  const std::string& filter_;
  PurgedRuleSets purged_;
  std::uint64_t addresses_ = 0;
  std::uint64_t elementBytes_ = 0;
  std::uint64_t rules_ = 0;
  std::vector<std::pair<std::string, std::optional<std::uint64_t>>> ruleSetMarks_;
  std::vector<std::pair<std::string, std::uint64_t>> setMarks_;
};

}  // namespace

FilterLibrary::FilterLibrary() {
  int reserved = 0;
  fwlibhandle_* handle = nullptr;
  const FWStatus_t status =
      FW_Initialize(FW_INTERFACE_VERSION, &reserved, FW_IO_IOCTL, 0, nullptr, &handle);
  if (status != FW_STATUS_OK) {
    throw StateError(std::string("the firewall of this host can't be reached: ") +
                     statusReason(status));
  }
  // FW_Exit would make the default handle, to know that this one is another.
  library_.reset(fromLibHandle(handle));
}

FilterLibrary::~FilterLibrary() = default;

fwlibhandle_* FilterLibrary::handle() const { return toLibHandle(library_.get()); }

std::string givenFilter(const char* text) {
  std::string name = text;
  if (name.empty()) throw CallError("the filter's name is empty");
  if (name.size() > kMaxName) throw CallError("the filter's name is too long");
  return name;
}

std::string statusReason(FWStatus_t status) {
  std::string reason = FW_StatusToString(status);
  // The library's status for an exception that is none of its own.
  if (status == FW_STATUS_UNKNOWN_ERROR) reason += ", or out of memory";
  return reason;
}

dvs_port_ filterSelector(const std::string& name) {
  dvs_port_ port{};
  if (!selectFilter(name.c_str(), &port)) throw StateError("the filter's name is too long");
  return port;
}

State stateOfFilter(fwlibhandle_* library, const dvs_port_& port, const std::string& name,
                    PurgedRuleSets purged) {
  for (int attempt = 0; attempt < kTries; ++attempt) {
    try {
      return Reader(library, port, name, purged).read();
    } catch (const Changed&) {
    }
  }
  throw StateError("filter " + name + ": it does not stay the same while it is read");
}

State stateOfFilter(const std::string& name) {
  const dvs_port_ port = filterSelector(name);
  const FilterLibrary library;
  return stateOfFilter(library.handle(), port, name);
}
