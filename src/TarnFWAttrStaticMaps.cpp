#include "TarnFWAttrStaticMaps.h"

namespace TarnFirewall {

namespace {

/// FNV-1a by Fowler, Noll and Vo, with its high bits folded into the low ones.
constexpr std::uint32_t hashName(std::string_view name) {
  std::uint32_t hash = 2166136261u;
  for (const char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
  return hash ^ (hash >> 15);
}

/// Offsets of `Rows` texts that stand one after the other, each with its NUL. The last `Again` rows
/// are those before them once more.
template <unsigned int Rows, unsigned int Again = 0, std::size_t Size>
consteval std::array<std::uint16_t, Rows> offsetsOf(const char (&text)[Size]) {
  static_assert(Size <= 0xffff);
  std::array<std::uint16_t, Rows> offsets{};
  std::size_t at = 0;
  for (unsigned int row = 0; row < Rows - Again; ++row) {
    offsets[row] = static_cast<std::uint16_t>(at);
    while (text[at] != '\0') ++at;
    ++at;
  }
  // Ends the compilation when the text holds more or fewer names than there are rows.
  if (at != Size - 1) throw "rows and names differ";
  for (unsigned int row = Rows - Again; row < Rows; ++row) offsets[row] = offsets[row - Again];
  return offsets;
}

/// Hash table of the named rows; at most half full, collisions go to the next free slot.
template <std::size_t Slots, std::size_t Rows, std::size_t Size>
consteval std::array<std::uint16_t, Slots> slotsOf(const char (&text)[Size],
                                                   const std::array<std::uint16_t, Rows>& offsets,
                                                   const bool* named, std::size_t rows) {
  static_assert((Slots & (Slots - 1)) == 0 && Slots >= 2 * Rows);
  std::array<std::uint16_t, Slots> slots{};
  for (std::size_t row = 0; row < rows; ++row) {
    if (named != nullptr && !named[row]) continue;
    std::size_t slot = hashName(text + offsets[row]) & (Slots - 1);
    while (slots[slot] != 0) slot = (slot + 1) & (Slots - 1);
    slots[slot] = static_cast<std::uint16_t>(row + 1);
  }
  return slots;
}

#define NAME(name) #name "\0"
#define NO_NAME(name) #name "\0"
constexpr char kAppText[] =
#include "TarnFWAttrAppNames.inc"
    ;
constexpr char kCipherText[] =
#include "TarnFWAttrCipherSuites.inc"
    ;
#undef NAME
#undef NO_NAME

constexpr unsigned int kEllipticRows = 59;
constexpr unsigned int kCipherRows = 186 + kEllipticRows;

#define NAME(name) true,
#define NO_NAME(name) false,
constexpr bool kCipherNamed[] = {
#include "TarnFWAttrCipherSuites.inc"
};
#undef NAME
#undef NO_NAME
static_assert(std::size(kCipherNamed) == kCipherRows);

constexpr char kTlsText[] =
    "UNKNOWN\0"
    "SSL_V3\0"
    "TLS_V10\0"
    "TLS_V11\0"
    "TLS_V12\0"
    "TLS_V13\0";
constexpr char kCifsText[] =
    "CIFS_SMB_INVALID\0"
    "CIFS_SMB_V1\0"
    "CIFS_SMB_V2\0";
constexpr char kHttpText[] =
    "GET\0"
    "HEAD\0"
    "POST\0"
    "PUT\0"
    "DELETE\0"
    "CONNECT\0"
    "OPTIONS\0"
    "TRACE\0";
constexpr char kFtpText[] =
    "UNKNOWN\0"
    "LS\0"
    "GET\0"
    "PUT\0";
constexpr char kKeyText[] =
    "APP_ID\0"
    "TLS_VERSION\0"
    "TLS_CIPHER_SUITE\0"
    "CIFS_SMB_VERSION\0"
    "HTTP_METHOD\0"
    "HTTP_PATH\0"
    "FTP_COMMAND\0"
    "FQDN\0"
    "WIN_SID\0"
    "USER_SID\0"
    "PROCESS_HASH\0"
    "CTX_PROFILE_ID\0";

constexpr auto kAppOffsets = offsetsOf<APP_ID_value2str_length>(kAppText);
constexpr auto kTlsOffsets = offsetsOf<TLS_VERSION_value2str_length>(kTlsText);
constexpr auto kCipherOffsets =
    offsetsOf<TLS_CIPHER_SUITE_value2str_length, kEllipticRows>(kCipherText);
constexpr auto kCifsOffsets = offsetsOf<CIFS_SMB_VERSION_value2str_length>(kCifsText);
constexpr auto kHttpOffsets = offsetsOf<HTTP_METHOD_value2str_length>(kHttpText);
constexpr auto kFtpOffsets = offsetsOf<FTP_COMMAND_value2str_length>(kFtpText);
constexpr auto kKeyOffsets = offsetsOf<kFWAttrKeys>(kKeyText);
static_assert(TLS_CIPHER_SUITE_value2str_length == kCipherRows + kEllipticRows);

constexpr auto kAppSlots = slotsOf<4096>(kAppText, kAppOffsets, nullptr, kAppOffsets.size());
constexpr auto kTlsSlots = slotsOf<16>(kTlsText, kTlsOffsets, nullptr, kTlsOffsets.size());
constexpr auto kCipherSlots = slotsOf<1024>(kCipherText, kCipherOffsets, kCipherNamed, kCipherRows);
constexpr auto kCifsSlots = slotsOf<8>(kCifsText, kCifsOffsets, nullptr, kCifsOffsets.size());
constexpr auto kHttpSlots = slotsOf<16>(kHttpText, kHttpOffsets, nullptr, kHttpOffsets.size());
constexpr auto kFtpSlots = slotsOf<8>(kFtpText, kFtpOffsets, nullptr, kFtpOffsets.size());
constexpr auto kKeySlots = slotsOf<32>(kKeyText, kKeyOffsets, nullptr, kKeyOffsets.size());

template <std::size_t Rows, std::size_t Slots>
constexpr FWAttrTable tableOf(const char* text, const std::array<std::uint16_t, Rows>& offsets,
                              const std::array<std::uint16_t, Slots>& slots, long firstValue) {
  return {
      {text, offsets.data(), Rows}, {{0, Rows, firstValue}, {}}, nullptr, slots.data(), Slots - 1};
}

constexpr FWAttrTable kAppTable = tableOf(kAppText, kAppOffsets, kAppSlots, -1);
constexpr FWAttrTable kTlsTable = tableOf(kTlsText, kTlsOffsets, kTlsSlots, 767);
constexpr FWAttrTable kCipherTable = {{kCipherText, kCipherOffsets.data(), kCipherRows},
                                      {{0, 186, 0}, {186, kEllipticRows, 49153}},
                                      kCipherNamed,
                                      kCipherSlots.data(),
                                      kCipherSlots.size() - 1};
constexpr FWAttrTable kCifsTable = tableOf(kCifsText, kCifsOffsets, kCifsSlots, 0);
constexpr FWAttrTable kHttpTable = tableOf(kHttpText, kHttpOffsets, kHttpSlots, 0);
constexpr FWAttrTable kFtpTable = tableOf(kFtpText, kFtpOffsets, kFtpSlots, 0);
constexpr FWAttrTable kKeyTable = tableOf(kKeyText, kKeyOffsets, kKeySlots, 0);
constexpr FWAttrTable kExternalTable =
    tableOf(kKeyText, kKeyOffsets, kKeySlots, kFWAttrExternalBase);

constexpr _FWAttrKey key(FWAttrKeyID id, FWAttrKeyValueType type, int discovery, int toSlowPath,
                         int toFastPath) {
  return BuildFWAttrKey(id, type, static_cast<FWAttrDiscovery>(discovery),
                        static_cast<FWAttrActionToSlowPath>(toSlowPath),
                        static_cast<FWAttrActionToFastPath>(toFastPath));
}

}  // namespace

constinit const std::array<_FWAttrKey, kFWAttrKeys> fwAttrKeyVector = {{
    key(FW_ATTR_KEY_APP_ID, FW_ATTR_VALUE_EINT, 1, 1, 1),
    key(FW_ATTR_KEY_TLS_VERSION, FW_ATTR_VALUE_EINT, 1, 1, 1),
    key(FW_ATTR_KEY_TLS_CIPHER_SUITE, FW_ATTR_VALUE_EINT, 1, 1, 1),
    key(FW_ATTR_KEY_CIFS_SMB_VERSION, FW_ATTR_VALUE_EINT, 1, 1, 1),
    key(FW_ATTR_KEY_HTTP_METHOD, FW_ATTR_VALUE_EINT, 2, 1, 0),
    key(FW_ATTR_KEY_HTTP_PATH, FW_ATTR_VALUE_UUID, 2, 1, 0),
    key(FW_ATTR_KEY_FTP_COMMAND, FW_ATTR_VALUE_EINT, 2, 1, 0),
    key(FW_ATTR_KEY_FQDN, FW_ATTR_VALUE_UUID, 0, 0, 1),
    key(FW_ATTR_KEY_WIN_SID, FW_ATTR_VALUE_SID, 0, 0, 1),
    key(FW_ATTR_KEY_USER_SID, FW_ATTR_VALUE_SID, 0, 0, 1),
    key(FW_ATTR_KEY_PROCESS_HASH, FW_ATTR_VALUE_UINT, 0, 0, 0),
    key(FW_ATTR_KEY_CTX_PROFILE_ID, FW_ATTR_VALUE_UUID, 2, 0, 0),
}};

bool FWAttrStr2IntMap::find(std::string_view name, long* value) const {
  const FWAttrTable& t = *table_;
  std::uint32_t slot = hashName(name) & t.slotMask;
  for (; t.slots[slot] != 0; slot = (slot + 1) & t.slotMask) {
    const unsigned int row = t.slots[slot] - 1u;
    if (name != t.names[row]) continue;
    const FWAttrRun& run = row < t.runs[0].rows ? t.runs[0] : t.runs[1];
    *value = run.firstValue + static_cast<long>(row - run.firstRow);
    return true;
  }
  return false;
}

const char* FWAttrInt2StrMap::find(long value) const {
  for (const FWAttrRun& run : table_->runs) {
    if (value < run.firstValue || value >= run.firstValue + static_cast<long>(run.rows)) continue;
    const std::size_t row = run.firstRow + static_cast<std::size_t>(value - run.firstValue);
    if (table_->named != nullptr && !table_->named[row]) return nullptr;
    return table_->names[row];
  }
  return nullptr;
}

constinit const FWAttrStr2IntMap str2DPIDMap(kKeyTable);
constinit const FWAttrInt2StrMap dpID2strMap(kKeyTable);

constinit const FWAttrStr2IntMap g_APP_ID_str2int_map(kAppTable);
constinit const FWAttrStr2IntMap g_TLS_VERSION_str2int_map(kTlsTable);
constinit const FWAttrStr2IntMap g_TLS_CIPHER_SUITE_str2int_map(kCipherTable);
constinit const FWAttrStr2IntMap g_CIFS_SMB_VERSION_str2int_map(kCifsTable);
constinit const FWAttrStr2IntMap g_HTTP_METHOD_str2int_map(kHttpTable);
constinit const FWAttrStr2IntMap g_FTP_COMMAND_str2int_map(kFtpTable);

constinit const FWAttrInt2StrMap g_APP_ID_int2str_map(kAppTable);
constinit const FWAttrInt2StrMap g_TLS_VERSION_int2str_map(kTlsTable);
constinit const FWAttrInt2StrMap g_TLS_CIPHER_SUITE_int2str_map(kCipherTable);
constinit const FWAttrInt2StrMap g_CIFS_SMB_VERSION_int2str_map(kCifsTable);
constinit const FWAttrInt2StrMap g_HTTP_METHOD_int2str_map(kHttpTable);
constinit const FWAttrInt2StrMap g_FTP_COMMAND_int2str_map(kFtpTable);

constinit const std::array<const FWAttrStr2IntMap*, kFWAttrKeys> g_Str2EintMapsRefs = {
    &g_APP_ID_str2int_map,           &g_TLS_VERSION_str2int_map, &g_TLS_CIPHER_SUITE_str2int_map,
    &g_CIFS_SMB_VERSION_str2int_map, &g_HTTP_METHOD_str2int_map, nullptr,
    &g_FTP_COMMAND_str2int_map};
constinit const std::array<const FWAttrInt2StrMap*, kFWAttrKeys> g_Eint2StrMapsRefs = {
    &g_APP_ID_int2str_map,           &g_TLS_VERSION_int2str_map, &g_TLS_CIPHER_SUITE_int2str_map,
    &g_CIFS_SMB_VERSION_int2str_map, &g_HTTP_METHOD_int2str_map, nullptr,
    &g_FTP_COMMAND_int2str_map};

constinit const FWAttrNames APP_ID_value2str = kAppTable.names;
constinit const FWAttrNames TLS_VERSION_value2str = kTlsTable.names;
constinit const FWAttrNames TLS_CIPHER_SUITE_value2str(kCipherText, kCipherOffsets.data(),
                                                       TLS_CIPHER_SUITE_value2str_length);
constinit const FWAttrNames CIFS_SMB_VERSION_value2str = kCifsTable.names;
constinit const FWAttrNames HTTP_METHOD_value2str = kHttpTable.names;
constinit const FWAttrNames FTP_COMMAND_value2str = kFtpTable.names;

constinit const FWAttrInt2StrMap FWAttribute_value2str_map(kExternalTable);
constinit const FWAttrStr2IntMap FWAttribute_str2key_map(kKeyTable);
constinit const FWAttrInt2StrMap FWAttribute_APP_ID_value2str_map(kAppTable);

}  // namespace TarnFirewall
