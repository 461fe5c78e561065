/// Statements that make address sets and containers.

#include <map>

#include "LanguageText.h"
#include "SaveText.h"
#include "TarnFWAttrValue.h"
#include "TarnFWAttributeUtils.h"
#include "TarnFWContainerElement.h"
#include "TarnFWSid.h"
#include "TarnFWText.h"
#include "TarnFWUtilIdentifier.h"

using namespace TarnFirewall;

namespace {

constexpr std::size_t kUuidText = 37;

/// Where the parts of an element stand: its head, the attribute's head, the value.
constexpr std::size_t kAttributeAt = sizeof(FWtlvChainElem);
constexpr std::size_t kValueAt = kAttributeAt + sizeof(_FWAttrValue);
constexpr std::size_t kTextLengthAt = kValueAt + 16;
constexpr std::size_t kTextAt = kTextLengthAt + 2;

/// An element's bytes, which may have any size.
class Element {
 public:
  explicit Element(const std::string& bytes) : bytes_(bytes) {
    if (bytes.size() < kValueAt) throw Unsayable("it has an element that is no attribute");
  }

  _FWAttrValue head() const { return loadRecord<_FWAttrValue>(bytes_.data() + kAttributeAt); }

  /// A name in quotes, or whatever the value's kind is written as.
  std::string value(const _FWAttrKey& key) const {
    switch (key.valueType) {
      case FW_ATTR_VALUE_EINT:
        return name(key.keyId);
      case FW_ATTR_VALUE_UUID:
        return identifier();
      case FW_ATTR_VALUE_SID:
        return sid();
      default:
        throw Unsayable("it has a value of " + std::string(dpID2str(key.keyId)));
    }
  }

 private:
  const char* at(std::size_t offset, std::size_t size) const {
    if (offset > bytes_.size() || size > bytes_.size() - offset) {
      throw Unsayable("it has an attribute that is cut off");
    }
    return bytes_.data() + offset;
  }

  std::string name(FWAttrKeyID key) const {
    const auto number = static_cast<long>(loadRecord<hosti64>(at(kValueAt, sizeof(hosti64))));
    std::string text;
    if (!eint2str(key, number, &text)) {
      throw Unsayable("it has a value without a name, " + std::to_string(number));
    }
    return quoted(text);
  }

  std::string identifier() const {
    char uuid[kUuidText];
    const auto* const bytes = reinterpret_cast<const unsigned char*>(at(kValueAt, 16));
    if (!uuid2normalstr(bytes, uuid, sizeof uuid)) throw Unsayable("it has a bad identifier");
    const std::size_t length = loadRecord<host16>(at(kTextLengthAt, 2));
    const std::string text(at(kTextAt, length), fieldLength(at(kTextAt, length), length));
    return (text.empty() ? "" : quoted(text) + " ") + "uuid " + uuid;
  }

  std::string sid() const {
    const auto record = loadRecord<fwattr_sid>(at(kValueAt, sizeof(fwattr_sid)));
    char text[kSidTextSize];
    if (!sid_bin2str(&record, text, sizeof text)) {
      throw Unsayable("it has a bad security identifier");
    }
    return quoted(text);
  }

  const std::string& bytes_;
};

std::string profileStatement(const std::string& name, const StateSet& set) {
  if (set.elements.empty()) throw Unsayable("the language has no attribute profile without values");
  std::map<FWAttrKeyID, std::string> groups;
  for (const std::string& bytes : set.elements) {
    const Element element(bytes);
    const unsigned int number = element.head().key;
    const _FWAttrKey* const key = dpID2attrkey(static_cast<FWAttrKeyID>(number));
    if (key == nullptr) throw Unsayable("it has the unknown key " + std::to_string(number));
    std::string& group = groups[key->keyId];
    if (!group.empty()) group += ", ";
    group += element.value(*key);
  }
  std::string text = "create attrprofile " + quoted(name) + " with {";
  const char* separator = "\n    [ ";
  for (const auto& [key, values] : groups) {
    text += separator;
    text += dpID2str(key).data();
    text += " : " + values + " ]";
    separator = ",\n    [ ";
  }
  return text + "\n}";
}

}  // namespace

std::string setStatement(const std::string& name, const StateSet& set) {
  if (name.size() >= sizeof(FWAddrSetID_t)) throw Unsayable("its name is too long");
  if (set.type == StateSet::kProfile) return profileStatement(name, set);
  if (!set.isAddresses()) {
    throw Unsayable(formatText("the language has no container of type %u", set.type));
  }
  std::string text = "create addrset " + quoted(name);
  // Alone, a range stays one, and there may be "any".
  if (set.addresses.size() == 1) return text + " with " + addressText(set.addresses.front());
  if (set.addresses.empty()) return text;
  const char* separator = " with {\n    ";
  for (const FWAddress_& address : set.addresses) {
    text += separator;
    text += addressText(address);
    separator = ",\n    ";
  }
  return text + "\n}";
}
