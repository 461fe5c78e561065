#pragma once

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

  /// What is moved from is empty, and all kinds can be added to it again.
  CTarnFWProtocolSpecList(CTarnFWProtocolSpecList&& other) noexcept
      : CTarnFWProtocolSpec(other.getDir(), other.isNegated()),
        portMode_(other.portMode_),
        kinds_(std::exchange(other.kinds_, 0)),
        first_(std::move(other.first_)) {}
  CTarnFWProtocolSpecList& operator=(CTarnFWProtocolSpecList&& other) noexcept {
    dir_ = other.dir_;
    negated_ = other.negated_;
    portMode_ = other.portMode_;
    first_ = std::move(other.first_);
    kinds_ = std::exchange(other.kinds_, 0);
    return *this;
  }

  int getType() const override { return kType; }
  unsigned int getMsgSize() const override {
    return portMode_ ? sizeof(FWPortBlock_) : sizeof(FWSessionBlock_);
  }
  /// Empty for an empty list; a single member stands alone, more stand in "with {...}".
  void appendTo(std::string& text) const override;
  /// Throws CDuplicateProtocolSpecException when two members want the same place; nothing is
  /// written then.
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) override;
  /// Writes the ports into a cleared block, in any mode. Throws as `toMessage`; something may be
  /// written then.
  void writePorts(FWPortBlock_& block) const;

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
    kinds_ = 0;
    if (spec) claimKind(*spec);
    first_ = std::move(spec);
  }

  /// Null for an empty list.
  CTarnFWProtocolSpec* first() const { return first_.get(); }

  /// Back to an empty list to which all kinds can be added.
  void clear() {
    first_.reset();
    kinds_ = 0;
  }

  bool empty() const { return !first_; }

  /// The kinds of the members, a bit each: `1 << kind`.
  std::uint32_t getKinds() const { return first_ ? kindsOfMembers() : 0; }

  /// Takes the first member out; null when there is none.
  std::unique_ptr<CTarnFWProtocolSpec> takeFirst();

  /// Moves the members of `other` to this list's end. On CDuplicateProtocolSpecException the member
  /// in question and those after it stay in `other`.
  void mergeSpecList(CTarnFWProtocolSpecList& other);

 private:
  std::uint32_t kindsOfMembers() const;
  void claimKind(const CTarnFWProtocolSpec& spec);
  std::unique_ptr<CTarnFWProtocolSpec>& end();
  template <typename Action>
  void forEach(Action action) const {
    for (CTarnFWProtocolSpec* spec = first_.get(); spec != nullptr; spec = spec->next_.get())
      action(*spec);
  }
  void writeSession(FWSessionBlock_& block) const;

  bool portMode_ = false;
  std::uint32_t kinds_ = 0;                     // bit: object type of a member less kFirstType
  std::unique_ptr<CTarnFWProtocolSpec> first_;  // the others hang on it: most lists have one
};

}  // namespace TarnFirewall
