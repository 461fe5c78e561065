#include "TarnFWContainerElement.h"

#include "TarnFWException.h"
#include "TarnFWL7Attribute.h"
#include "TarnFWLog.h"

namespace TarnFirewall {

unsigned int CTarnFWContainerElement::getMsgSize() const {
  return getTlvLength() + static_cast<unsigned int>(sizeof(FWtlvChainElem));
}

int CTarnFWContainerElement::getType() const { return kContainerElementObject; }

bool CTarnFWContainerElement::toMessage(void* buffer, unsigned int size, unsigned int* written) {
  constexpr unsigned int kHead = sizeof(FWtlvChainElem);
  if (buffer == nullptr || size < kHead) return false;
  FWtlvChainElem head;
  head.one = 1;
  head.type = getTlvType();
  head.length = getTlvLength();
  storeRecord(buffer, head);
  unsigned int value = 0;
  if (!serializeValue(static_cast<std::uint8_t*>(buffer) + kHead, size - kHead, &value)) {
    TARNFW_ERROR("failed to serializeValue %s\n", toString().c_str());
    return false;
  }
  if (written != nullptr) *written = kHead + value;
  return true;
}

std::unique_ptr<CTarnFWContainerElement> CTarnFWContainerElement::buildContainerElement(
    const FWtlvChainElem* element, unsigned int size) {
  constexpr unsigned int kHead = sizeof(FWtlvChainElem);
  if (element == nullptr || size < kHead) return nullptr;
  const auto head = loadRecord<FWtlvChainElem>(element);
  if (head.type != FW_CONTAINER_ELEMENT_ATTRIBUTE) {
    TARNFW_ERROR("unknown container element\n");
    return nullptr;
  }
  if (head.length > size - kHead) return nullptr;
  const auto* const value = reinterpret_cast<const std::uint8_t*>(element) + kHead;
  try {
    return std::make_unique<CTarnFWL7Attribute>(reinterpret_cast<const _FWAttrValue*>(value),
                                                head.length);
  } catch (const CTarnFWException&) {
    return nullptr;
  }
}

bool operator==(const std::unique_ptr<CTarnFWContainerElement>& left,
                const std::unique_ptr<CTarnFWContainerElement>& right) {
  return left.get() != nullptr && right.get() != nullptr && *left == *right;
}

bool operator<(const std::unique_ptr<CTarnFWContainerElement>& left,
               const std::unique_ptr<CTarnFWContainerElement>& right) {
  return left.get() != nullptr && right.get() != nullptr && *left < *right;
}

}  // namespace TarnFirewall
