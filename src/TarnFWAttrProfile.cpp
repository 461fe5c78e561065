#include "TarnFWAttrProfile.h"

#include "TarnFWAttributeUtils.h"
#include "TarnFWLog.h"

namespace TarnFirewall {

CTarnFWAttrProfile::CTarnFWAttrProfile(const std::string& name)
    : CTarnFWContainer(name, FW_CONTAINER_ATTR_PROFILE) {}

bool CTarnFWAttrProfile::addElement(std::unique_ptr<CTarnFWContainerElement> element) {
  const auto* const attribute = dynamic_cast<const CTarnFWL7Attribute*>(element.get());
  if (attribute == nullptr) {
    TARNFW_ERROR("element is not an attribute\n");
    return false;
  }
  if (dpID2attrkey(attribute->getKeyID()) == nullptr) {
    TARNFW_ERROR("failed to add element. Element has invalid key\n");
    return false;
  }
  return CTarnFWContainer::addElement(std::move(element));
}

bool CTarnFWAttrProfile::addAttribute(std::unique_ptr<CTarnFWL7Attribute> attribute) {
  if (attribute == nullptr) return addElement(nullptr);
  if (dpID2attrkey(attribute->getKeyID()) == nullptr) return false;
  return CTarnFWContainer::addElement(std::move(attribute));
}

/// Elements are ordered by their key first, so that those of one key stand together.
std::string CTarnFWAttrProfile::toString() const {
  std::string text = getName() + " with {\n";
  const CTarnFWL7Attribute* former = nullptr;
  for (const auto& element : elements()) {
    const auto* const attribute = static_cast<const CTarnFWL7Attribute*>(element.element);
    if (former == nullptr || former->getKeyID() != attribute->getKeyID()) {
      if (former != nullptr) text += "],\n";
      text += "[ ";
      text += dpID2str(attribute->getKeyID());
      text += " : ";
    } else {
      text += ", ";
    }
    text += attribute->toStringValue();
    former = attribute;
  }
  if (former != nullptr) text += ']';
  text += "\n}";
  return text;
}

}  // namespace TarnFirewall
