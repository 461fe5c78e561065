#include "PlanCommand.h"

#include <algorithm>
#include <cstring>

#include "LanguageText.h"
#include "TarnFWAddrSetHead.h"
#include "TarnFWCmdClearRootRuleSet.h"
#include "TarnFWCmdClearRuleSet.h"
#include "TarnFWCmdClearRuleSetJump.h"
#include "TarnFWCmdDestroyAddrSet.h"
#include "TarnFWCmdDestroyAllAddrSet.h"
#include "TarnFWCmdDestroyAllRuleSet.h"
#include "TarnFWCmdDestroyRuleSet.h"
#include "TarnFWCmdSetRootRuleSet.h"
#include "TarnFWCmdSetRuleSetJump.h"
#include "TarnFWContainer.h"
#include "TarnFWRuleSetCreateCmd.h"

using namespace TarnFirewall;

namespace {

using Kind = PlanStep::Kind;

template <typename Id>
Id idOf(const std::string& name) {
  Id id{};
  name.copy(id.text, sizeof id.text - 1);
  return id;
}

/// A creation whose entries are records as a state holds them. The library's own commands make
/// records from objects, and have none for what the language can't say.
class RecordsCmd : public CTarnFWCreateCmd {
 protected:
  RecordsCmd(const dvs_port_* port, std::uint16_t number, const Layout& layout,
             std::uint64_t entryBytes)
      : CTarnFWCreateCmd(port, number, layout), size_(entryBytes) {}

  unsigned int entriesSize() const final {
    if (size_ > UINT32_MAX)
      throw CIntegerOverflowException("the set is too large for a message", 0);
    return static_cast<unsigned int>(size_);
  }

  static std::byte* put(std::byte* to, const void* bytes, std::size_t size) {
    if (size != 0) std::memcpy(to, bytes, size);
    return to + size;
  }

 private:
  bool writeEntries(void* buffer, unsigned int room, unsigned int* written) final {
    if (room < size_) return false;
    write(static_cast<std::byte*>(buffer));
    *written = entriesSize();
    return true;
  }

  virtual void write(std::byte* to) const = 0;

  std::uint64_t size_;
};

class CreateRuleSetCmd final : public RecordsCmd {
 public:
  CreateRuleSetCmd(const dvs_port_* port, const std::string& name, const StateRuleSet& set)
      : RecordsCmd(port, 3, kLayout, std::uint64_t{sizeof(FWRule_)} * set.count()),
        name_(name),
        set_(set) {}

  std::string toString() const override { return "create ruleset " + name_; }

 private:
  static constexpr Layout kLayout = {sizeof(FWRuleSetHead_), offsetof(FWRuleSetHead_, flags),
                                     offsetof(FWRuleSetHead_, transaction)};

  void fillHead(std::span<std::byte> head) const override {
    FWRuleSetHead_ record{};
    record.name = idOf<FWRuleSetID_t>(name_);
    record.count = static_cast<std::uint32_t>(set_.count());
    record.flags = kRequestFlags;
    storeRecord(head.data(), record);
  }

  void write(std::byte* to) const override {
    for (const StateRules kind : kStateRuleOrder) {
      const auto& rules = set_.of(kind);
      to = put(to, rules.data(), rules.size() * sizeof(FWRule_));
    }
  }

  std::string name_;
  const StateRuleSet& set_;
};

class CreateAddrSetCmd final : public RecordsCmd {
 public:
  CreateAddrSetCmd(const dvs_port_* port, const std::string& name, const StateSet& set)
      : RecordsCmd(port, 13, kAddrSetLayout,
                   std::uint64_t{sizeof(FWAddress_)} * set.addresses.size()),
        name_(name),
        set_(set) {}

  std::string toString() const override { return "create addrset " + name_; }

 private:
  static constexpr std::uint8_t kHasIPv6 = 0x08;

  static bool isIPv6(const FWAddress_& address) {
    return address.type == FW_ADDRESS_IPV6 || address.type == FW_ADDRESS_IPV6_RANGE ||
           address.type == FW_ADDRESS_IPV6_CIDR;
  }

  void fillHead(std::span<std::byte> head) const override {
    FWAddrSetHead_ record{};
    record.name = idOf<FWAddrSetID_t>(name_);
    record.count = static_cast<std::uint32_t>(set_.addresses.size());
    record.type = StateSet::kAddresses;
    record.size = entriesSize();
    record.flags = kRequestFlags;
    if (std::any_of(set_.addresses.begin(), set_.addresses.end(), isIPv6)) {
      record.flags |= kHasIPv6;
    }
    storeRecord(head.data(), record);
  }

  void write(std::byte* to) const override {
    put(to, set_.addresses.data(), set_.addresses.size() * sizeof(FWAddress_));
  }

  std::string name_;
  const StateSet& set_;
};

class CreateContainerCmd final : public RecordsCmd {
 public:
  CreateContainerCmd(const dvs_port_* port, const std::string& name, const StateSet& set)
      : RecordsCmd(port, 75, kAddrSetLayout, sizeof(FWtlvChain) + bytesOf(set)),
        name_(name),
        set_(set) {}

  std::string toString() const override { return "create container " + name_; }

 private:
  static std::uint64_t bytesOf(const StateSet& set) {
    std::uint64_t bytes = 0;
    for (const std::string& element : set.elements) bytes += element.size();
    return bytes;
  }

  void fillHead(std::span<std::byte> head) const override {
    FWAddrSetHead_ record{};
    record.name = idOf<FWAddrSetID_t>(name_);
    record.count = static_cast<std::uint32_t>(set_.elements.size());
    record.type = set_.type;
    record.size = entriesSize();
    record.flags = kRequestFlags;
    storeRecord(head.data(), record);
  }

  void write(std::byte* to) const override {
    FWtlvChain chain{};
    chain.type = set_.type;
    chain.count = static_cast<std::uint32_t>(set_.elements.size());
    chain.size = static_cast<std::uint32_t>(bytesOf(set_));
    to = put(to, &chain, sizeof chain);
    for (const std::string& element : set_.elements) to = put(to, element.data(), element.size());
  }

  std::string name_;
  const StateSet& set_;
};

const StateRuleSet kEmpty{};

}  // namespace

std::unique_ptr<CTarnFWCmd> stepCommand(const PlanStep& step, const State& to,
                                        const dvs_port_* port) {
  const auto set = [&] { return idOf<FWAddrSetID_t>(step.name); };
  const auto ruleSet = [&] { return idOf<FWRuleSetID_t>(step.name); };
  switch (step.kind) {
    case Kind::createSet: {
      const StateSet& made = to.sets.at(step.name);
      if (made.isAddresses()) return std::make_unique<CreateAddrSetCmd>(port, step.name, made);
      return std::make_unique<CreateContainerCmd>(port, step.name, made);
    }
    case Kind::createRuleSet:
      return std::make_unique<CreateRuleSetCmd>(port, step.name, to.ruleSets.at(step.name));
    case Kind::createEmptyRuleSet:
      return std::make_unique<CreateRuleSetCmd>(port, step.name, kEmpty);
    case Kind::setJump:
      return std::make_unique<CTarnFWCmdSetRuleSetJump>(
          port, ruleSet(), idOf<FWRuleSetID_t>(to.ruleSets.at(step.name).jump));
    case Kind::clearJump:
      return std::make_unique<CTarnFWCmdClearRuleSetJump>(port, ruleSet());
    case Kind::setRootThatIsThere: {
      const auto there = [&](const std::string& name) {
        return to.ruleSets.contains(name) ? idOf<FWRuleSetID_t>(name) : FWRuleSetID_t{};
      };
      return std::make_unique<CTarnFWCmdSetRootRuleSet>(port, there(to.layer3), there(to.layer2));
    }
    case Kind::setRoot:
      return std::make_unique<CTarnFWCmdSetRootRuleSet>(port, idOf<FWRuleSetID_t>(to.layer3),
                                                        idOf<FWRuleSetID_t>(to.layer2));
    case Kind::clearRoot:
      return std::make_unique<CTarnFWCmdClearRootRuleSet>(port);
    case Kind::clearRules:
      return std::make_unique<CTarnFWCmdClearRuleSet>(port, ruleSet());
    case Kind::destroyRuleSet:
      return std::make_unique<CTarnFWCmdDestroyRuleSet>(port, ruleSet());
    case Kind::destroyAllRuleSets:
      return std::make_unique<CTarnFWCmdDestroyAllRuleSet>(port);
    case Kind::destroySet:
      return std::make_unique<CTarnFWCmdDestroyAddrSet>(port, set());
    case Kind::destroyAllSets:
      break;
  }
  return std::make_unique<CTarnFWCmdDestroyAllAddrSet>(port);
}

std::string stepText(const PlanStep& step, const State& to) {
  try {
    return stepStatement(step, to) + ";\n";
  } catch (const Unsayable& e) {
    return "# " + shownStep(step, to) + " has no text: " + escapedText(e.what()) + "\n";
  }
}

std::string obstacleOf(const State& state) {
  for (const auto& [name, set] : state.ruleSets) {
    if (!set.jump.empty() && !state.ruleSets.contains(set.jump)) {
      return "rule set " + shownName(name) + " jumps to " + shownName(set.jump) +
             ", which nothing makes";
    }
  }
  // One of the two layers may be without rules.
  if (state.hasRoot() && !state.ruleSets.contains(state.layer3) &&
      !state.ruleSets.contains(state.layer2)) {
    return "the root is " + shownName(state.layer3.empty() ? state.layer2 : state.layer3) +
           ", which nothing makes";
  }
  return {};
}
