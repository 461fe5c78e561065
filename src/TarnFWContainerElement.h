#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "TarnFWObject.h"
#include "TarnFWWire.h"

namespace TarnFirewall {

/// Head of one element in a chain; the value follows it.
struct FWtlvChainElem {
  host16 one;     // +0  written as 1
  host16 type;    // +2  element type
  host32 length;  // +4  bytes of the value
};
static_assert(sizeof(FWtlvChainElem) == 8 && alignof(FWtlvChainElem) == 1);
static_assert(offsetof(FWtlvChainElem, one) == 0 && offsetof(FWtlvChainElem, type) == 2 &&
              offsetof(FWtlvChainElem, length) == 4);

/// Kind of a container's element.
enum FWContElementType : std::uint16_t {
  FW_CONTAINER_ELEMENT_ATTRIBUTE = 0,
};

/// Type codes of containers, in the number space of addresses and rules.
inline constexpr int kContainerElementObject = 135;
inline constexpr int kContainerObject = 136;

/// One typed member of a container.
class CTarnFWContainerElement : public ITarnFWObject {
 public:
  using SortKey = std::array<std::uint64_t, 3>;

  unsigned int getMsgSize() const override;
  int getType() const override;

  /// Writes the head and the value. False for a null buffer, under 8 bytes, and when the value does
  /// not fit.
  bool toMessage(void* buffer, unsigned int size, unsigned int* written) override;

  virtual FWContElementType getTlvType() const = 0;

  /// Bytes of the value.
  virtual unsigned int getTlvLength() const = 0;

  /// Writes the value alone. `written` may be null.
  virtual bool serializeValue(void* buffer, unsigned int size, unsigned int* written) const = 0;

  /// Both are false for an element of another kind.
  virtual bool operator==(const CTarnFWContainerElement& other) const = 0;
  virtual bool operator<(const CTarnFWContainerElement& other) const = 0;

  /// The beginning of what `operator<` compares: elements of one kind are ordered as their keys
  /// are, where these differ. So many elements are sorted without a look at each.
  virtual SortKey sortKey() const { return {}; }

  /// Reads one element out of `size` bytes. Null for an unknown kind, for a value that does not lie
  /// in these bytes whole, and for one that the element's class refuses; that text is not logged.
  static std::unique_ptr<CTarnFWContainerElement> buildContainerElement(
      const FWtlvChainElem* element, unsigned int size);

 protected:
  explicit CTarnFWContainerElement(FWContElementType type) : type_(type) {}

  FWContElementType elementType() const { return type_; }

 private:
  FWContElementType type_;
};

/// False when either pointer is null, otherwise what the elements say.
bool operator==(const std::unique_ptr<CTarnFWContainerElement>& left,
                const std::unique_ptr<CTarnFWContainerElement>& right);
bool operator<(const std::unique_ptr<CTarnFWContainerElement>& left,
               const std::unique_ptr<CTarnFWContainerElement>& right);

}  // namespace TarnFirewall
