// Texts of attributes: names of keys and values, security identifiers, numbers of attribute
// addresses.

#include <cstring>
#include <string>

#include "Fuzz.h"
#include "TarnFWAddressAttr.h"
#include "TarnFWAttributeUtils.h"
#include "TarnFWException.h"
#include "TarnFWL7Attribute.h"
#include "TarnFWSid.h"

using namespace TarnFirewall;

namespace {

void identifier(const std::string& text) {
  fwattr_sid sid;
  if (!sid_str2bin(text.c_str(), &sid)) return;
  char printed[kSidTextSize];
  require(sid_bin2str(&sid, printed, sizeof printed));
  fwattr_sid again;
  require(sid_str2bin(printed, &again));
  require(std::memcmp(&sid, &again, sizeof sid) == 0);
}

void values(const std::string& text) {
  for (int key = 0; key <= static_cast<int>(kFWAttrKeys); ++key) {
    const auto id = static_cast<FWAttrKeyID>(key);
    try {
      const CTarnFWL7Attribute attribute(id, text);
      require(attribute.getString() == text);
    } catch (const CInvalidAttrKey&) {
    } catch (const CInvalidAttrValue&) {
    }
    long value = 0;
    std::string name;
    if (str2eint(id, text, &value)) require(eint2str(id, value, &name) && name == text);
  }
  const FWAttrKeyID key = str2dpID(text);
  if (key != FW_ATTR_KEY_NONE) require(dpID2str(key) == text);
}

template <FWAttrIDValType Kind>
void address(const std::string& text) {
  try {
    CTarnFWAttr<Kind> attr(FW_ATTR_ID_WIN_SID, text.c_str(), false);
    FWAddress_ record;
    std::memset(&record, 0, sizeof record);
    require(attr.toMessage(&record, sizeof record, nullptr));
    require(CTarnFWAttr<Kind>(&record).toString() == attr.toString());
  } catch (const CInvalidAddressException&) {
  } catch (const CIDTooLongException&) {
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(data, data + size);
  identifier(text);
  values(text);
  address<FW_ATTR_ID_VALUE_INT>(text);
  address<FW_ATTR_ID_VALUE_UINT>(text);
  address<FW_ATTR_ID_VALUE_STRING>(text);
  address<FW_ATTR_ID_VALUE_SID>(text);
  return 0;
}
