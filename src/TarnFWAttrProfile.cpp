#include "TarnFWAttrProfile.h"

#include "TarnFWAttributeUtils.h"
#include "TarnFWLog.h"

namespace TarnFirewall {

CTarnFWAttrProfile::CTarnFWAttrProfile(const std::string& name)
    : CTarnFWContainer(name, FW_CONTAINER_ATTR_PROFILE) {}

bool CTarnFWAttrProfile::addElement(std::unique_ptr<CTarnFWContainerElement> element) {
  auto* const attribute = dynamic_cast<CTarnFWL7Attribute*>(element.get());
  if (attribute == nullptr) {
    TARNFW_ERROR("element is not an attribute\n");
    return false;
  }
  if (dpID2attrkey(attribute->getKeyID()) == nullptr) {
    TARNFW_ERROR("failed to add element. Element has invalid key\n");
    return false;
  }
  element.release();
  return join(std::unique_ptr<CTarnFWL7Attribute>(attribute));
}

bool CTarnFWAttrProfile::addAttribute(std::unique_ptr<CTarnFWL7Attribute> attribute) {
  if (attribute == nullptr || dpID2attrkey(attribute->getKeyID()) == nullptr) return false;
  return join(std::move(attribute));
}

/// Only what the container keeps joins its group: a dropped duplicate is gone with this call.
bool CTarnFWAttrProfile::join(std::unique_ptr<CTarnFWL7Attribute> attribute) {
  const CTarnFWL7Attribute* const kept = attribute.get();
  if (!CTarnFWContainer::addElement(std::move(attribute))) return false;
  groups_[kept->getKeyID()].insert(kept);
  return true;
}

std::string CTarnFWAttrProfile::toString() const {
  std::string text = getName() + " with {\n";
  const char* line = "";
  for (const auto& [key, attributes] : groups_) {
    text += line;
    text += "[ ";
    text += dpID2str(key);
    text += " : ";
    const char* separator = "";
    for (const CTarnFWL7Attribute* attribute : attributes) {
      text += separator;
      text += attribute->toStringValue();
      separator = ", ";
    }
    text += ']';
    line = ",\n";
  }
  text += "\n}";
  return text;
}

}  // namespace TarnFirewall
