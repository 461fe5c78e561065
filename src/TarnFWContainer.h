#pragma once

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "TarnFWContainerElement.h"
#include "TarnFWContainerID.h"

namespace TarnFirewall {

/// Head of a container's wire form; integers in host order. The elements follow, one after the
/// other.
struct FWtlvChain {
  host32 type;   // +0  container type
  host32 count;  // +4  elements
  host32 size;   // +8  bytes of the elements, this head not counted
};
static_assert(sizeof(FWtlvChain) == 12 && alignof(FWtlvChain) == 1);
static_assert(offsetof(FWtlvChain, type) == 0 && offsetof(FWtlvChain, count) == 4 &&
              offsetof(FWtlvChain, size) == 8);

/// A named set of typed elements that the kernel holds beside the address sets. Elements are owned,
/// ordered by their own order, and unique.
class CTarnFWContainer : public ITarnFWObject {
  /// An element beside its key, which is compared first: many elements are put in order without a
  /// look at each, which would wait for memory.
  struct Ordered {
    explicit Ordered(CTarnFWContainerElement* of) : key(of->sortKey()), element(of) {}
    bool operator<(const Ordered& other) const {
      const auto order = key <=> other.key;
      return order != 0 ? order < 0 : *element < *other.element;
    }
    CTarnFWContainerElement* operator->() const { return element; }

    CTarnFWContainerElement::SortKey key;
    CTarnFWContainerElement* element;
  };
  using Elements = std::set<Ordered>;

 public:
  /// Throws `CInvalidContainerNameException` for a name of more than 37 characters.
  CTarnFWContainer(const std::string& name, FWContainerType type);

  /// An attribute profile for its type, a plain container for every other.
  static std::unique_ptr<CTarnFWContainer> BuildContainer(const std::string& name,
                                                          FWContainerType type);

  /// The same with the elements of a chain of `size` bytes; null when the chain is refused.
  static std::unique_ptr<CTarnFWContainer> BuildContainer(const std::string& name,
                                                          FWContainerType type,
                                                          const FWtlvChain* chain,
                                                          unsigned int size);

  unsigned int getMsgSize() const override;
  int getType() const override;

  /// "{A, B }".
  std::string toString() const override;
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) override;

  /// True when the element joined. One that equals an element of the set is dropped: no error.
  virtual bool addElement(std::unique_ptr<CTarnFWContainerElement> element);

  /// Adds the elements of a chain of `size` bytes. False, with a log line and the elements read so
  /// far, when it does not lie in these bytes or an element is refused.
  virtual bool parseTLVChain(const FWtlvChain* chain, unsigned int size);

  const std::string& getName() const { return name_; }
  FWContainerType getContainerType() const { return type_; }
  unsigned int getCount() const { return static_cast<unsigned int>(elements_.size()); }

  /// Fills `out` with the texts of the elements, in order, each from `malloc` and owned by the
  /// caller. False when they are more than `capacity`.
  bool elementsToCharArray(char** out, unsigned int capacity) const;

 protected:
  /// In their own order.
  const Elements& elements() const { return elements_; }

 private:
  void putInOrder(std::size_t first);

  std::string name_;
  FWContainerType type_;
  // In the order in which they came, which is that of their memory: so they are freed the fastest.
  // An element of a chain that equals an earlier one stands here alone.
  std::vector<std::unique_ptr<CTarnFWContainerElement>> owned_;
  Elements elements_;
};

}  // namespace TarnFirewall
