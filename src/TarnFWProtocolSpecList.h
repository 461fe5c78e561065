#pragma once

#include <forward_list>
#include <memory>
#include <utility>

#include "TarnFWProtocolSpec.h"

namespace TarnFirewall {

/// The protocol specs of one place in a rule: source ports, destination ports or the connection.
///
/// A list writes itself in one of two ways. In port mode, which a rule switches on for its two port
/// lists, it is a port block of 38 bytes and skips all members but ports. Otherwise it is the
/// session block of 56 bytes and skips ports.
class CTarnFWProtocolSpecList final : public CTarnFWProtocolSpec {
 public:
  static constexpr int kType = 127;

  /// An empty list, port mode off. Throws CInvalidProtocolSpecDirException for a dir above 2.
  explicit CTarnFWProtocolSpecList(unsigned char dir) : CTarnFWProtocolSpec(dir, false) {}

  /// A list of one member, or an empty one for null, whose member is turned to the list's dir.
  CTarnFWProtocolSpecList(unsigned char dir, std::unique_ptr<CTarnFWProtocolSpec> only)
      : CTarnFWProtocolSpecList(dir) {
    if (only == nullptr) return;
    only->setDir(dir);
    setSpec(std::move(only));
  }

  /// What is moved from is empty, and all kinds can be added to it again.
  CTarnFWProtocolSpecList(CTarnFWProtocolSpecList&& other) noexcept
      : CTarnFWProtocolSpec(other.getDir(), other.isNegated()),
        portMode_(other.portMode_),
        kinds_(std::exchange(other.kinds_, Kinds{})),
        first_(std::move(other.first_)),
        rest_(std::move(other.rest_)) {}
  CTarnFWProtocolSpecList& operator=(CTarnFWProtocolSpecList&& other) noexcept {
    dir_ = other.dir_;
    negated_ = other.negated_;
    portMode_ = other.portMode_;
    first_ = std::move(other.first_);
    rest_ = std::move(other.rest_);
    kinds_ = std::exchange(other.kinds_, Kinds{});
    return *this;
  }

  int getType() const override { return kType; }
  unsigned int getMsgSize() const override {
    return portMode_ ? sizeof(FWPortBlock_) : sizeof(FWSessionBlock_);
  }
  /// Empty for an empty list; a single member stands alone, more stand in "with {...}".
  void appendTo(CTarnFWText& text) const override;
  /// Throws CDuplicateProtocolSpecException when two members want the same place; nothing is
  /// written then.
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) override;
  /// Write the ports, or all else, into a cleared block, in any mode. Throw as `toMessage`;
  /// something may be written then. `traced`: with the debug lines of `toMessage`. A rule
  /// that writes once more what it wrote before leaves them out.
  void writePorts(FWPortBlock_& block, bool traced) const;
  void writeSession(FWSessionBlock_& block, bool traced) const;
  /// Whether no two members want the same place, so that these two don't throw.
  bool hasAPlaceForEach() const {
    return atMostOne(kinds_.held & kPortKinds) && atMostOne(kinds_.held & kFlagKinds);
  }

  /// Of the list and each member.
  void setDir(unsigned char dir) override;

  void setPortMode(bool on) { portMode_ = on; }

  /// Throws CDuplicateProtocolSpecException for a second spec of a kind.
  void addSpec(std::unique_ptr<CTarnFWProtocolSpec> spec);

  /// Takes the first member of this kind out and hands it to the caller; null when there is none.
  /// The kind still counts as present, so that another of it can't be added: configurations that
  /// are refused for it stay refused.
  std::unique_ptr<CTarnFWProtocolSpec> deleteSpec(FWProtocolSpecType_t kind);

  /// Members of this kind, or all members for FW_SPEC_NONE.
  unsigned int getSpecCount(FWProtocolSpecType_t kind) const;

  /// Makes this spec the only member; null makes the list empty. All other kinds can be added.
  void setSpec(std::unique_ptr<CTarnFWProtocolSpec> spec) {
    clear();
    if (spec) kinds_.held = kindOf(*spec);
    first_ = std::move(spec);
  }

  /// Null for an empty list.
  CTarnFWProtocolSpec* first() const { return first_.get(); }

  /// Back to an empty list to which all kinds can be added.
  void clear() {
    first_.reset();
    rest_.clear();
    kinds_ = {};
  }

  bool empty() const { return !first_; }

  /// The kinds of the members, a bit each: `1 << kind`.
  std::uint32_t getKinds() const { return kinds_.held; }

  /// Moves the members of `other` to this list's end. On CDuplicateProtocolSpecException the member
  /// in question and those after it stay in `other`.
  void mergeSpecList(CTarnFWProtocolSpecList& other);

 private:
  using Member = std::unique_ptr<CTarnFWProtocolSpec>;

  /// Kinds that share a place in the record.
  static constexpr unsigned int kPortKinds =
      1u << FW_SPEC_L4_PORT | 1u << FW_SPEC_L4_PORT_RANGE | 1u << FW_SPEC_L4_PORT_SET;
  static constexpr unsigned int kFlagKinds = 1u << FW_SPEC_TCP_FLAGS | 1u << FW_SPEC_ICMP_TYPE;
  static constexpr bool atMostOne(unsigned int kinds) { return (kinds & (kinds - 1)) == 0; }

  /// A bit each, `1 << kind`.
  struct Kinds {
    std::uint16_t held = 0;   // of the members
    std::uint16_t taken = 0;  // of those that were taken out
  };

  static std::uint16_t kindOf(const CTarnFWProtocolSpec& spec) {
    return static_cast<std::uint16_t>(1u << spec.getSpecType());
  }
  void refuseSecondOfAKind(const CTarnFWProtocolSpec& spec) const;
  void append(Member spec);
  /// Takes the first member out; null when there is none.
  Member takeFirst();
  void markTaken(const CTarnFWProtocolSpec& spec);
  template <typename Action>
  void forEach(Action action) const {
    if (first_) action(*first_);
    for (const Member& spec : rest_) action(*spec);
  }

  bool portMode_ = false;
  Kinds kinds_;
  Member first_;                    // most lists have no other
  std::forward_list<Member> rest_;  // in order, those after it
};

}  // namespace TarnFirewall
