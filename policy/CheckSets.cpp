#include "CheckSets.h"

#include <cstring>

#include "TarnFWAddrSetHead.h"
#include "TarnFWCmd.h"
#include "TarnFWText.h"

using namespace TarnFirewall;

namespace {

constexpr std::uint16_t kCreateAddrSet = 13, kDestroyAddrSet = 14, kClearAddrSet = 64,
                        kDestroyAllAddrSets = 65, kCreateContainer = 75;

/// The message that a statement would send.
std::vector<std::uint8_t> bodyOf(CTarnFWCmd& command) {
  std::vector<std::uint8_t> body(command.getMsgSize());
  const auto room = static_cast<unsigned int>(body.size());
  unsigned int written = 0;
  if (!command.writeCmdBody(body.data(), room, &written, 0) || written > room) written = 0;
  body.resize(written);
  return body;
}

/// The key of a name in a filter, made in place.
class ScopedName {
 public:
  ScopedName(std::size_t scope, const void* field, std::size_t size) {
    const std::size_t length = fieldLength(static_cast<const char*>(field), size);
    std::memcpy(bytes_, &scope, sizeof scope);
    std::memcpy(bytes_ + sizeof scope, field, length);
    size_ = sizeof scope + length;
  }
  std::string_view view() const { return {bytes_, size_}; }

 private:
  char bytes_[sizeof(std::size_t) + sizeof(FWAddrSetID_t)];
  std::size_t size_;
};

}  // namespace

void SetContents::statement(std::size_t scope, CTarnFWCmd& command) {
  switch (command.getCommand()) {
    case kCreateAddrSet:
      create(scope, command);
      return;
    case kDestroyAddrSet:
    case kClearAddrSet:
    case kCreateContainer:  // it takes the place of a set of its name
      empty(scope, command);
      return;
    case kDestroyAllAddrSets:
      allGone_[scope] = time_;
      return;
    default:
      return;
  }
}

void SetContents::create(std::size_t scope, CTarnFWCmd& command) {
  const std::vector<std::uint8_t> body = bodyOf(command);
  if (body.size() < sizeof(FWAddrSetHead_)) return;
  std::vector<AddressBlock> blocks;
  bool any = false, plain = true;
  for (std::size_t at = sizeof(FWAddrSetHead_); body.size() - at >= sizeof(FWAddress_);
       at += sizeof(FWAddress_)) {
    const auto record = loadRecord<FWAddress_>(&body[at]);
    const std::size_t before = blocks.size();
    if (const auto block = blockOf(record)) {
      blocks.push_back(*block);
    } else {
      addBlocksOf(record, blocks);
    }
    const bool negated = (record.flags & kAddressNegated) != 0;
    if (blocks.size() == before || negated) plain = false;
    if (record.type == FW_ADDRESS_ANY && !negated) any = true;
  }
  if (!plain) blocks.clear();
  Set& set = sets_[numberOf(scope, body.data()) - 1];
  set.blocks = merged(std::move(blocks));
  set.any = any;
  set.time = ++time_;
}

void SetContents::empty(std::size_t scope, CTarnFWCmd& command) {
  const std::vector<std::uint8_t> body = bodyOf(command);
  if (body.size() < sizeof(FWAddrSetID_t)) return;
  Set& set = sets_[numberOf(scope, body.data()) - 1];
  set.blocks.clear();
  set.any = false;
}

std::uint32_t SetContents::numberOf(std::size_t scope, const std::uint8_t* name) {
  const ScopedName key(scope, name, sizeof(FWAddrSetID_t));
  const auto place = numbers_.find(key.view());
  if (place != numbers_.end()) return place->second;
  sets_.push_back({scope, {}});
  return numbers_.emplace(key.view(), static_cast<std::uint32_t>(sets_.size())).first->second;
}

bool SetContents::isThere(const Set& set) const {
  const auto gone = allGone_.find(set.scope);
  return gone == allGone_.end() || set.time > gone->second;
}

const std::vector<AddressBlock>& SetContents::blocksOf(std::uint32_t number) const {
  static const std::vector<AddressBlock> kNone;
  const Set& set = sets_[number - 1];
  return isThere(set) ? set.blocks : kNone;
}

bool SetContents::holdsAny(std::uint32_t number) const {
  const Set& set = sets_[number - 1];
  return set.any && isThere(set);
}
