#include "TarnFWAttributeUtils.h"

#include "TarnFWLog.h"

namespace TarnFirewall {

namespace {

bool isKey(FWAttrKeyID key) { return static_cast<unsigned int>(key) < kFWAttrKeys; }

}  // namespace

const _FWAttrKey* dpID2attrkey(FWAttrKeyID key) {
  return isKey(key) ? &fwAttrKeyVector[static_cast<std::size_t>(key)] : nullptr;
}

const _FWAttrKey* mpID2attrkey(int externalId) {
  return dpID2attrkey(mpID2dpIDMap.find(externalId));
}

const _FWAttrKey* str2attrkey(std::string_view name) { return dpID2attrkey(str2dpID(name)); }

FWAttrKeyID str2dpID(std::string_view name) {
  long key = FW_ATTR_KEY_NONE;
  str2DPIDMap.find(name, &key);
  return static_cast<FWAttrKeyID>(key);
}

std::string_view dpID2str(FWAttrKeyID key) {
  const char* const name = dpID2strMap.find(key);
  return name != nullptr ? name : "";
}

bool str2eint(FWAttrKeyID key, std::string_view name, long* value) {
  const FWAttrStr2IntMap* const map =
      isKey(key) ? g_Str2EintMapsRefs[static_cast<std::size_t>(key)] : nullptr;
  return map != nullptr && map->find(name, value);
}

bool eint2str(FWAttrKeyID key, long value, std::string* name) {
  const FWAttrInt2StrMap* const map =
      isKey(key) ? g_Eint2StrMapsRefs[static_cast<std::size_t>(key)] : nullptr;
  if (map == nullptr) {
    TARNFW_ERROR("%s : failed to find key\n\n", dpID2str(key).data());
    return false;
  }
  const char* const found = map->find(value);
  if (found == nullptr) {
    TARNFW_ERROR("%s : failed to find value\n\n", dpID2str(key).data());
    return false;
  }
  *name = found;
  return true;
}

const char* dpiState2Str(FWDPIState state) {
  switch (state) {
    case FW_DPI_STATE_NONE:
      return "NONE";
    case FW_DPI_STATE_PUNT:
      return "PUNT";
  }
  return "UNKNOWN";
}

FWAttrIDType FWAttribute_str2key(const char* name) {
  long key = FW_ATTR_ID_NONE;
  if (name == nullptr || !FWAttribute_str2key_map.find(name, &key)) {
    TARNFW_WARNING("attribute literal string name %s not found\n",
                   name != nullptr ? name : "(null)");
  }
  return static_cast<FWAttrIDType>(key);
}

FWAttrIDValType FWAttribute_key2type(FWAttrIDType key) {
  const FWAttrIDValType* const type = FWAttribute_key2type_map.find(key);
  if (type == nullptr) {
    TARNFW_WARNING("attribute key %d not found\n", static_cast<int>(key));
    return FW_ATTR_ID_VALUE_NONE;
  }
  return *type;
}

const char* FWAttribute_APP_ID_value2str(int value) {
  const char* const name = FWAttribute_APP_ID_value2str_map.find(value);
  if (name == nullptr) {
    TARNFW_WARNING("app protobuf value %d not found\n", value);
    return "unknown";
  }
  return name;
}

}  // namespace TarnFirewall
