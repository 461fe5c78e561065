#pragma once

/// Constant tables of layer-7 attributes: the keys, and the names of encoded values.
///
/// Every table is laid out by the compiler: names stand in one block of text with 16-bit offsets,
/// so that no table costs anything at start-up, not even a relocation for each name. A name is
/// found through a hash table made by the compiler, a number through its place in a run of numbers.
/// Nothing here allocates or throws.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "TarnFWIdentityRecords.h"

namespace TarnFirewall {

/// How many keys there are, `FWAttrKeyID`.
inline constexpr unsigned int kFWAttrKeys = 12;

/// What the management side adds to a key's number.
inline constexpr int kFWAttrExternalBase = 10000;

/// Kind of value that a key holds.
enum FWAttrKeyValueType : std::uint16_t {
  FW_ATTR_VALUE_INT = 0,
  FW_ATTR_VALUE_UINT = 1,
  FW_ATTR_VALUE_EINT = 2,  // a number with a name
  FW_ATTR_VALUE_UUID = 3,  // 16 bytes and a free text
  FW_ATTR_VALUE_SID = 4,
};

/// Carried for the data path; the library gives these numbers no meaning.
enum class FWAttrDiscovery : std::uint8_t {};
enum class FWAttrActionToSlowPath : std::uint8_t {};
enum class FWAttrActionToFastPath : std::uint8_t {};

/// One row of the key table.
struct _FWAttrKey {
  FWAttrKeyValueType valueType;
  FWAttrKeyID keyId;
  FWAttrDiscovery discovery;
  FWAttrActionToSlowPath actionToSlowPath;
  FWAttrActionToFastPath actionToFastPath;
};

constexpr _FWAttrKey BuildFWAttrKey(FWAttrKeyID key, FWAttrKeyValueType type,
                                    FWAttrDiscovery discovery, FWAttrActionToSlowPath toSlowPath,
                                    FWAttrActionToFastPath toFastPath) {
  return {type, key, discovery, toSlowPath, toFastPath};
}

/// The key table; a row's place is its key.
extern const std::array<_FWAttrKey, kFWAttrKeys> fwAttrKeyVector;

/// Rows of names in one block of text, each with its NUL. A row's place is not its number.
class FWAttrNames {
 public:
  constexpr FWAttrNames(const char* text, const std::uint16_t* offsets, unsigned int rows)
      : text_(text), offsets_(offsets), rows_(rows) {}

  /// `row` is below `size()`.
  constexpr const char* operator[](std::size_t row) const { return text_ + offsets_[row]; }
  constexpr unsigned int size() const { return rows_; }

 private:
  const char* text_;
  const std::uint16_t* offsets_;
  unsigned int rows_;
};

/// Consecutive rows that have consecutive numbers.
struct FWAttrRun {
  unsigned int firstRow;
  unsigned int rows;
  long firstValue;
};

/// Names with their numbers. The two kinds of map below are views of it.
struct FWAttrTable {
  FWAttrNames names;
  FWAttrRun runs[2];           // the second may be empty
  const bool* named;           // false for a row that is in no map; null when all rows are
  const std::uint16_t* slots;  // hash table of row + 1, 0 for a free slot
  std::uint32_t slotMask;
};

class FWAttrStr2IntMap {
 public:
  constexpr explicit FWAttrStr2IntMap(const FWAttrTable& table) : table_(&table) {}

  /// False, with `value` unchanged, for a name that is not in the table.
  bool find(std::string_view name, long* value) const;

 private:
  const FWAttrTable* table_;
};

class FWAttrInt2StrMap {
 public:
  constexpr explicit FWAttrInt2StrMap(const FWAttrTable& table) : table_(&table) {}

  /// Null for a number without a name.
  const char* find(long value) const;

 private:
  const FWAttrTable* table_;
};

/// External ids, as the management side numbers the keys, to keys.
class FWAttrExternalIdMap {
 public:
  /// `FW_ATTR_KEY_NONE` for a number that is not an external id.
  constexpr FWAttrKeyID find(int externalId) const {
    if (externalId < kFWAttrExternalBase) return FW_ATTR_KEY_NONE;
    const int key = externalId - kFWAttrExternalBase;
    return key < static_cast<int>(kFWAttrKeys) ? static_cast<FWAttrKeyID>(key) : FW_ATTR_KEY_NONE;
  }
};

extern const FWAttrStr2IntMap str2DPIDMap;
inline constexpr FWAttrExternalIdMap mpID2dpIDMap;
extern const FWAttrInt2StrMap dpID2strMap;

extern const FWAttrStr2IntMap g_APP_ID_str2int_map;
extern const FWAttrStr2IntMap g_TLS_VERSION_str2int_map;
extern const FWAttrStr2IntMap g_TLS_CIPHER_SUITE_str2int_map;
extern const FWAttrStr2IntMap g_CIFS_SMB_VERSION_str2int_map;
extern const FWAttrStr2IntMap g_HTTP_METHOD_str2int_map;
extern const FWAttrStr2IntMap g_FTP_COMMAND_str2int_map;

extern const FWAttrInt2StrMap g_APP_ID_int2str_map;
extern const FWAttrInt2StrMap g_TLS_VERSION_int2str_map;
extern const FWAttrInt2StrMap g_TLS_CIPHER_SUITE_int2str_map;
extern const FWAttrInt2StrMap g_CIFS_SMB_VERSION_int2str_map;
extern const FWAttrInt2StrMap g_HTTP_METHOD_int2str_map;
extern const FWAttrInt2StrMap g_FTP_COMMAND_int2str_map;

/// The maps of each key; null for a key whose values have no names.
extern const std::array<const FWAttrStr2IntMap*, kFWAttrKeys> g_Str2EintMapsRefs;
extern const std::array<const FWAttrInt2StrMap*, kFWAttrKeys> g_Eint2StrMapsRefs;

/// The same names by row, for listing. The rows of the cipher suites end with the elliptic-curve
/// ones once more, which those who index the rows depend on; the maps know each name once.
extern const FWAttrNames APP_ID_value2str;
extern const FWAttrNames TLS_VERSION_value2str;
extern const FWAttrNames TLS_CIPHER_SUITE_value2str;
extern const FWAttrNames CIFS_SMB_VERSION_value2str;
extern const FWAttrNames HTTP_METHOD_value2str;
extern const FWAttrNames FTP_COMMAND_value2str;
inline constexpr unsigned int APP_ID_value2str_length = 1977;
inline constexpr unsigned int TLS_VERSION_value2str_length = 6;
inline constexpr unsigned int TLS_CIPHER_SUITE_value2str_length = 304;
inline constexpr unsigned int CIFS_SMB_VERSION_value2str_length = 3;
inline constexpr unsigned int HTTP_METHOD_value2str_length = 8;
inline constexpr unsigned int FTP_COMMAND_value2str_length = 4;

/// Keys of attribute addresses. The numbers are those of `FWAttrKeyID`.
enum FWAttrIDType : std::uint32_t {
  FW_ATTR_ID_WIN_SID = 8,
  FW_ATTR_ID_NONE = 12,  // no such key
};

/// Kinds of value of attribute addresses. The keys of the table have only the kinds 6 to 9, so that
/// none of them builds an attribute address from configuration text: the kernel takes such values
/// in containers.
enum FWAttrIDValType : std::uint32_t {
  FW_ATTR_ID_VALUE_INT = 0,
  FW_ATTR_ID_VALUE_UINT = 1,
  FW_ATTR_ID_VALUE_STRING = 2,
  FW_ATTR_ID_VALUE_SID = 5,
  FW_ATTR_ID_VALUE_KEY_EINT = 6,
  FW_ATTR_ID_VALUE_KEY_UINT = 7,
  FW_ATTR_ID_VALUE_KEY_SID = 8,
  FW_ATTR_ID_VALUE_KEY_UUID = 9,
  FW_ATTR_ID_VALUE_NONE = 10,  // no such key
};

/// Key to kind of value.
class FWAttrKey2TypeMap {
 public:
  /// Null for a number that is not a key.
  constexpr const FWAttrIDValType* find(std::uint32_t key) const {
    return key < kFWAttrKeys ? &kTypes[key] : nullptr;
  }

 private:
  static constexpr FWAttrIDValType kTypes[kFWAttrKeys] = {
      FW_ATTR_ID_VALUE_KEY_EINT, FW_ATTR_ID_VALUE_KEY_EINT, FW_ATTR_ID_VALUE_KEY_EINT,
      FW_ATTR_ID_VALUE_KEY_EINT, FW_ATTR_ID_VALUE_KEY_EINT, FW_ATTR_ID_VALUE_KEY_UUID,
      FW_ATTR_ID_VALUE_KEY_EINT, FW_ATTR_ID_VALUE_KEY_UUID, FW_ATTR_ID_VALUE_KEY_SID,
      FW_ATTR_ID_VALUE_KEY_SID,  FW_ATTR_ID_VALUE_KEY_UINT, FW_ATTR_ID_VALUE_KEY_UUID};
};

/// External id to key name, key name to key, key to kind of value, number to application name.
extern const FWAttrInt2StrMap FWAttribute_value2str_map;
extern const FWAttrStr2IntMap FWAttribute_str2key_map;
inline constexpr FWAttrKey2TypeMap FWAttribute_key2type_map;
extern const FWAttrInt2StrMap FWAttribute_APP_ID_value2str_map;

}  // namespace TarnFirewall
