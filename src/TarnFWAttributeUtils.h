#pragma once

/// Look-ups in the attribute tables. Nothing allocates beyond a result string.

#include <string>
#include <string_view>

#include "TarnFWAttrStaticMaps.h"

namespace TarnFirewall {

/// Null for a number that is not a key.
const _FWAttrKey* dpID2attrkey(FWAttrKeyID key);

/// By the management side's number.
const _FWAttrKey* mpID2attrkey(int externalId);
const _FWAttrKey* str2attrkey(std::string_view name);

/// `FW_ATTR_KEY_NONE` for a name that is not in the table.
FWAttrKeyID str2dpID(std::string_view name);

/// Empty for a number that is not a key. Ends with a NUL.
std::string_view dpID2str(FWAttrKeyID key);

/// Number of a name of this key. False, silently, when the key's values have no names or this is
/// none of them.
bool str2eint(FWAttrKeyID key, std::string_view name, long* value);

/// Name of a number of this key. False, with an error line, when there is none.
bool eint2str(FWAttrKeyID key, long value, std::string* name);

/// How far deep inspection of a connection has come.
enum FWDPIState : unsigned int {
  FW_DPI_STATE_NONE = 0,
  FW_DPI_STATE_PUNT = 1,
};

/// "UNKNOWN" for a state without a name.
const char* dpiState2Str(FWDPIState state);

/// `FW_ATTR_ID_NONE`, with a warning, for a name that is not in the table or null.
FWAttrIDType FWAttribute_str2key(const char* name);

/// `FW_ATTR_ID_VALUE_NONE`, with a warning, for a number that is not a key.
FWAttrIDValType FWAttribute_key2type(FWAttrIDType key);

/// "unknown", with a warning, for a number that is not an application.
const char* FWAttribute_APP_ID_value2str(int value);

}  // namespace TarnFirewall
