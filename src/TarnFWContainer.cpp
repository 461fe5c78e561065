#include "TarnFWContainer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "TarnFWAttrProfile.h"
#include "TarnFWLog.h"
#include "TarnFWText.h"

namespace TarnFirewall {

namespace {

constexpr unsigned int kHead = sizeof(FWtlvChain);

/// How far ahead of its turn an element is fetched.
constexpr std::size_t kAhead = 8;

/// Has the processor fetch an element from memory, with its text, which was allocated after it.
void fetch(const CTarnFWContainerElement* element) {
  constexpr std::size_t kLine = 64;
  constexpr std::size_t kLines = 4;
  const auto* const bytes = reinterpret_cast<const std::byte*>(element);
  for (std::size_t line = 0; line < kLines; ++line) __builtin_prefetch(bytes + kLine * line);
}

}  // namespace

CTarnFWContainer::CTarnFWContainer(const std::string& name, FWContainerType type)
    : name_(name), type_(type) {
  checkContainerName(name);
}

std::unique_ptr<CTarnFWContainer> CTarnFWContainer::BuildContainer(const std::string& name,
                                                                   FWContainerType type) {
  if (type == FW_CONTAINER_ATTR_PROFILE) return std::make_unique<CTarnFWAttrProfile>(name);
  return std::make_unique<CTarnFWContainer>(name, type);
}

std::unique_ptr<CTarnFWContainer> CTarnFWContainer::BuildContainer(const std::string& name,
                                                                   FWContainerType type,
                                                                   const FWtlvChain* chain,
                                                                   unsigned int size) {
  std::unique_ptr<CTarnFWContainer> container = BuildContainer(name, type);
  if (!container->parseTLVChain(chain, size)) return nullptr;
  return container;
}

unsigned int CTarnFWContainer::getMsgSize() const {
  unsigned int size = kHead;
  for (const auto& element : elements_) size += element->getMsgSize();
  return size;
}

int CTarnFWContainer::getType() const { return kContainerObject; }

std::string CTarnFWContainer::toString() const {
  std::string text = "{";
  const char* separator = "";
  for (const auto& element : elements_) {
    text += separator;
    text += element->toString();
    separator = ", ";
  }
  text += " }";
  return text;
}

bool CTarnFWContainer::toMessage(void* buffer, unsigned int size, unsigned int* written) {
  if (buffer == nullptr) return false;
  const unsigned int needed = getMsgSize();
  if (needed > size) {
    TARNFW_ERROR("%s\n",
                 formatText("size of message buffer %u is less than required size %u", size, needed)
                     .c_str());
    return false;
  }
  FWtlvChain head;
  head.type = type_;
  head.count = getCount();
  head.size = needed - kHead;
  storeRecord(buffer, head);
  unsigned int used = kHead;
  for (const auto& element : elements_) {
    unsigned int part = 0;
    if (!element->toMessage(static_cast<std::uint8_t*>(buffer) + used, size - used, &part)) {
      TARNFW_ERROR("failed to serialize : %s\n", element->toString().c_str());
      return false;
    }
    used += part;
  }
  if (written != nullptr) *written = used;
  return true;
}

bool CTarnFWContainer::addElement(std::unique_ptr<CTarnFWContainerElement> element) {
  if (element.get() == nullptr) return false;
  owned_.push_back(std::move(element));
  const bool joined = elements_.emplace(owned_.back().get()).second;
  if (!joined) owned_.pop_back();
  return joined;
}

/// Adds what is owned from `first` on, the elements of a chain. Of equal elements the first stays.
/// They are sorted before, so that each goes to the end: a search for each through a tree of
/// pointers is slow once the tree outgrows the processor's cache.
void CTarnFWContainer::putInOrder(std::size_t first) {
  std::vector<Ordered> read;
  read.reserve(owned_.size() - first);
  for (std::size_t i = first; i < owned_.size(); ++i) read.emplace_back(owned_[i].get());
  std::stable_sort(read.begin(), read.end());
  for (const Ordered& each : read) elements_.insert(elements_.end(), each);
}

bool CTarnFWContainer::parseTLVChain(const FWtlvChain* chain, unsigned int size) {
  if (chain == nullptr) return false;
  if (size < kHead) {
    TARNFW_ERROR("size of tlv chain message less than minimum size : %lu\n",
                 static_cast<unsigned long>(kHead));
    return false;
  }
  const auto head = loadRecord<FWtlvChain>(chain);
  const std::uint32_t chainSize = head.size;
  if (chainSize > size) {
    TARNFW_ERROR("size of tlv chain %u is greater than the buffer size %u\n", chainSize, size);
    return false;
  }
  // The rule for chains is loose, since the kernel's chains are taken whatever their size field
  // says: it is compared with the buffer alone, and the heads of the elements do not count against
  // what remains. The buffer's end is what bounds every read.
  const auto* place = reinterpret_cast<const std::uint8_t*>(chain) + kHead;
  unsigned int remaining = size - kHead;
  const std::uint32_t count = head.count;
  const std::size_t first = owned_.size();
  bool whole = true;
  for (std::uint32_t index = 0; index < count; ++index) {
    auto element = CTarnFWContainerElement::buildContainerElement(
        reinterpret_cast<const FWtlvChainElem*>(place), remaining);
    if (element.get() == nullptr) {
      TARNFW_ERROR("failed to create element at index %d\n\n", static_cast<int>(index));
      whole = false;
      break;
    }
    const std::uint32_t length = loadRecord<FWtlvChainElem>(place).length;
    owned_.push_back(std::move(element));
    const unsigned int step = static_cast<unsigned int>(sizeof(FWtlvChainElem)) + length;
    place += step;
    remaining -= step;
  }
  putInOrder(first);
  return whole;
}

bool CTarnFWContainer::elementsToCharArray(char** out, unsigned int capacity) const {
  if (out == nullptr || capacity < elements_.size()) {
    TARNFW_ERROR("number of elements mismatch %u != %lu\n", capacity,
                 static_cast<unsigned long>(elements_.size()));
    return false;
  }
  std::size_t filled = 0;
  auto ahead = elements_.begin();
  for (std::size_t i = 0; i < kAhead && ahead != elements_.end(); ++i) ++ahead;
  for (const auto& element : elements_) {
    if (ahead != elements_.end()) fetch((ahead++)->element);
    out[filled] = ::strdup(element->toString().c_str());
    if (out[filled] == nullptr) {
      while (filled > 0) std::free(out[--filled]);
      return false;
    }
    ++filled;
  }
  return true;
}

}  // namespace TarnFirewall
