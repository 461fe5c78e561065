#pragma once

/// Rules that are never reached: those after a rule of their rule set that matches all of what they
/// match, in every field.
///
/// Each address, and each combination of the other fields, has a number. For a rule the numbers of
/// what is wider than its fields are found by looking up, not by comparing it with every earlier
/// rule, so that the work grows with the number of rules. What this leaves out stands in
/// docs/policy-checks.md: it finds less there, and nothing that is not so.

#include <cstdint>
#include <deque>
#include <functional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "AddressBlocks.h"
#include "CheckSets.h"
#include "Diagnostic.h"
#include "PortRanges.h"
#include "TarnFWRuleRecord.h"

namespace TarnFirewall {
class CTarnFWCmdList;
class CTarnFWRuleList;
}  // namespace TarnFirewall

class ShadowCheck {
 public:
  explicit ShadowCheck(Diagnostics& diagnostics) : diagnostics_(diagnostics) {}

  /// Takes the sets and rules of a statement for the filter with this number. `places`: where the
  /// word `rule` of each of its rules stands.
  void statement(std::size_t scope, std::uint32_t file, TarnFirewall::CTarnFWCmdList& commands,
                 std::span<const std::uint32_t> places);

  /// After the last text: looks at the rules, now that the sets are known.
  void finish();

 private:
  /// Fields of a rule that are compared as a whole.
  struct Rest {
    std::uint8_t kind;
    std::uint8_t layer3;
    std::uint8_t direction;
    std::uint8_t af;       // of the rule or of its addresses
    std::uint8_t askedAf;  // what the rule itself asks for, or a block of a whole family in it
    std::uint8_t hasProtocol;
    std::uint8_t protocolNegated;
    std::uint16_t protocol;
    std::uint16_t dscp;
    TarnFirewall::FWPortBlock_ sourcePorts;
    std::uint8_t session[52];  // headers and bodies of flags and options
    char extendedSource[38];
    char attributeProfile[38];
  };
  /// What a rule says of one side, as a value.
  struct Address {
    AddressBlock block;      // where `hasBlock` is set
    std::uint32_t set = 0;   // its number, from 1, where it is one
    std::uint32_t uses = 0;  // by rules
    std::uint32_t kept = 0;  // where its wider addresses are kept, from 1, when it is used again
    std::uint32_t sets = 0;  // the sets that hold the block, from 1 in `setsOfBlock_`
    bool hasBlock = false;
  };
  /// A length that prefixes have, and the bits that stay of an address.
  struct Length {
    std::uint8_t length;
    AddressBits mask;
  };
  struct Ports {
    std::uint32_t number;
    PortRange hull;
  };
  /// Numbers by keys that are looked for without making a string.
  struct TextHash : std::hash<std::string_view> {
    using is_transparent = void;
  };
  template <typename Value>
  using ByText = std::unordered_map<std::string, Value, TextHash, std::equal_to<>>;
  struct Rule {
    std::uint32_t rest;
    std::uint32_t source;
    std::uint32_t destination;
    std::uint32_t id;
    std::int32_t position;
    std::uint32_t place;  // in the text
    std::uint32_t ports;  // of the destination: 0 for one range, else a number of `ports_`
    PortRange hull;       // from the first port to the last
    bool isFinal;         // a packet that it matches goes no further
  };
  struct RuleSet {
    std::uint32_t file;
    std::vector<Rule> rules;
  };
  struct Key {
    std::uint32_t rest;
    std::uint32_t source;
    std::uint32_t destination;
    bool operator==(const Key&) const = default;
  };
  class Bucket;
  class Buckets;

  void takeRules(std::size_t scope, std::uint32_t file, const TarnFirewall::CTarnFWRuleList& rules,
                 std::span<const std::uint32_t> places);
  Rule ruleOf(std::size_t scope, const TarnFirewall::FWRule_& record);
  std::uint32_t restOf(const TarnFirewall::FWRule_& record);
  std::uint32_t addressOf(std::size_t scope, const TarnFirewall::FWAddress_& record, bool present,
                          bool layer3);
  std::uint32_t numberOfAny();
  std::uint32_t numberOfSet(std::uint32_t set);
  std::uint32_t numberOfRecord(std::size_t scope, const TarnFirewall::FWAddress_& record);
  std::uint32_t portsNumber(const TarnFirewall::FWPortBlock_& block, PortRange& hull);

  std::size_t blockPlace(const AddressBlock& block) const;
  std::uint32_t numberOfBlock(const AddressBlock& block);
  void indexAddresses();
  const std::vector<std::uint32_t>& widerAddresses(std::uint32_t number,
                                                   std::vector<std::uint32_t>& room);
  void widen(std::uint32_t number, std::vector<std::uint32_t>& wider);
  void addWiderBlocks(const AddressBlock& block, std::vector<std::uint32_t>& wider) const;
  const std::vector<std::uint32_t>& widerRests(std::uint32_t number);
  static bool covers(const Rest& outer, const Rest& inner);
  void look(RuleSet& set);
  const Rule* findWider(const Buckets& buckets, const Rule& rule);

  Diagnostics& diagnostics_;
  std::deque<RuleSet> ruleSets_;

  std::deque<Rest> rests_;
  std::unordered_map<std::string_view, std::uint32_t> restNumbers_;
  std::vector<std::vector<std::uint32_t>> restsWider_;

  std::vector<Address> addresses_;
  std::vector<std::uint32_t> blockPlaces_ = std::vector<std::uint32_t>(1024);  // see `blockPlace`
  std::size_t blocks_ = 0;                                                     // of these in use
  ByText<std::uint32_t> recordNumbers_;      // of addresses that are equal only
  std::vector<std::uint32_t> setAddresses_;  // of sets, from 1 by their numbers
  std::deque<std::vector<std::uint32_t>> kept_;
  std::uint32_t any_ = 0;       // number of "any" and 1, once there is one
  std::uint32_t lastRest_ = 0;  // what the last rule had

  SetContents sets_;

  std::vector<PortRanges> ports_{{}};
  ByText<Ports> portNumbers_;  // of lists, by their bytes

  // Made by `indexAddresses`: the addresses of sets that hold a block.
  std::deque<std::vector<std::uint32_t>> setsOfBlock_;
  std::vector<std::uint32_t> setsOfAny_;  // sets that hold `any`
  bool hasLength_[2][129] = {};
  std::vector<Length> lengths_[2];  // of the prefixes of both: IPv6, IPv4
  std::vector<std::uint32_t> sourceRoom_, destinationRoom_, candidates_;
};
