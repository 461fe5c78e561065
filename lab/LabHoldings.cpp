#include "LabHoldings.h"

#include <array>

#include "LabAddressRecord.h"
#include "LabChain.h"
#include "LabFamily.h"
#include "LabFlowFile.h"
#include "LabRuleRecord.h"
#include "LabSelector.h"
#include "LabText.h"

namespace TarnLab::Holdings {

namespace {

using Generation = unsigned long long;

std::string rules(const SetFile& set) {
  std::string text;
  for (ConstBytes rest = set.entries(); rest.size() >= RuleRecord::size;
       rest = rest.subspan(RuleRecord::size)) {
    text += "  " + RuleRecord::text(rest.first(RuleRecord::size)) + "\n";
  }
  return text;
}

std::string entries(const SetFile& set) {
  std::string text;
  if (set.head().type != 1) {
    for (const std::string& element : Chain::texts(set.entries())) text += "  " + element + ",\n";
    return text;
  }
  for (ConstBytes rest = set.entries(); rest.size() >= AddressRecord::size;
       rest = rest.subspan(AddressRecord::size)) {
    text += "  " + AddressRecord::text(rest.first(AddressRecord::size)) + ",\n";
  }
  return text;
}

}  // namespace

void forEachSet(const Store& store, const std::string& folder,
                const std::function<void(const std::string&, const SetFile&)>& visit) {
  for (const std::string& file : store.list(folder)) {
    if (const auto set = SetFile::open(store, folder + "/" + file)) {
      visit(Selector::nameOfFile(file), *set);
    }
  }
}

std::string set(const std::string& name, const SetFile& set) {
  const bool ofRules = set.head().what == SetHead::ruleSet;
  const char* word = ofRules ? "ruleset" : set.head().type == 1 ? "addrset" : "container";
  return std::string(word) + " " + printable(name) + " {\n" +
         (ofRules ? rules(set) : entries(set)) + "}\n";
}

std::string sets(const Store& store, const std::string& folder) {
  std::string text;
  forEachSet(store, folder + "/rulesets", [&](const std::string& name, const SetFile& set) {
    const SetHead& head = set.head();
    const std::string title = name.empty() ? "root" : "ruleset " + printable(name);
    text += format("  %s: %u rules, %u snat, %u dnat, generation %llu%s%s\n", title.c_str(),
                   head.counts[0], head.counts[1], head.counts[2], Generation{head.generation},
                   head.jump.empty() ? "" : ", jumps to ", printable(head.jump).c_str());
  });
  forEachSet(store, folder + "/addrsets", [&](const std::string& name, const SetFile& set) {
    const SetHead& head = set.head();
    const std::string title =
        head.type == 1 ? "addrset" : format("container of type %u", head.type);
    text += format("  %s %s: %u %s, generation %llu\n", title.c_str(), printable(name).c_str(),
                   head.counts[0], head.type == 1 ? "addresses" : "elements",
                   Generation{head.generation});
  });
  return text;
}

std::string settings(const Store& store, const std::string& folder) {
  std::string text;
  for (const std::string& line : Settings::load(store, folder).lines()) text += "  " + line + "\n";
  return text;
}

std::string flowCounts(const Store& store, const std::string& folder) {
  static constexpr const char* words[] = {"of other kinds", "active",  "inactive",
                                          "dropped",        "L2 pass", "L2 drop"};
  const auto file = FlowFile::open(store, folder);
  if (!file) return "";
  std::array<unsigned, std::size(words)> counts{};
  for (std::size_t group = 0; group < flowGroups; ++group) {
    for (std::size_t i = 0; i < file->count(group); ++i) {
      const unsigned kind = FlowRecord::kind.get(file->record(group, i));
      ++counts[kind < counts.size() ? kind : 0];
    }
  }
  std::string text;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    const std::size_t kind = (i + 1) % counts.size();
    if (counts[kind] == 0) continue;
    text += (text.empty() ? "" : ", ") + format("%u %s", counts[kind], words[kind]);
  }
  return text.empty() ? "none" : text;
}

std::string filter(const Store& store, const Host& host, std::size_t index) {
  const ConstBytes record = host.record(index);
  const std::string vif(getText(record, FilterRecord::vif, FilterRecord::vifSize));
  std::string text = "filter " + printable(host.name(index)) + "\n";
  text += format("  agent %s, vnic %u, slow path %u%s%s%s\n", printable(host.agent(index)).c_str(),
                 get32(record, FilterRecord::vnicIndex), get32(record, FilterRecord::slowPath),
                 vif.empty() ? "" : ", vif ", printable(vif).c_str(),
                 host.isConnected(index) ? "" : ", disconnected");
  const std::string folder = host.folderOf(index);
  const std::string flows = flowCounts(store, folder);
  if (!flows.empty()) text += "  flows: " + flows + "\n";
  return text + settings(store, folder) + sets(store, folder);
}

std::string table(const Store& store, const std::string& folder, const Table& table) {
  const Table::Records records = table.load(store, folder);
  if (records.empty()) return "";
  std::string text = std::string(table.name) + " {\n";
  for (const ByteVector& record : records) {
    std::string lines = table.text(record);
    for (std::size_t at = lines.find('\n'); at != std::string::npos;
         at = lines.find('\n', at + 1)) {
      lines.insert(at + 1, "  ");
    }
    text += "  " + lines + "\n";
  }
  return text + "}\n";
}

const Table* findTable(std::string_view name) {
  for (const Family* family : families()) {
    for (const auto& tables : {family->tables, family->hostTables}) {
      for (const Table& table : tables) {
        if (table.name == name) return &table;
      }
    }
  }
  return nullptr;
}

}  // namespace TarnLab::Holdings
