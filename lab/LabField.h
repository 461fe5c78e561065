// The fields of the kernel's records. A family of commands names each field once: its answers read
// and write through it, the model checks it, and the log prints it.
#ifndef TARNLAB_FIELD_H
#define TARNLAB_FIELD_H

#include <array>
#include <bit>
#include <initializer_list>

#include "LabBody.h"

namespace TarnLab {

/// What a field holds, which is how the log prints it.
enum class As : std::uint8_t {
  number,   // in host order
  network,  // in network order
  hex,      // in host order, printed as 0x...
  text,     // up to its first NUL, or all of the field
  name,     // a text that has to end inside the field, with zeros after its end
  bytes,    // printed as hexadecimal digits; not printed when they are all zero
  id,       // 16 bytes, two numbers in host order; not printed when they are all zero
  mac,      // 6 bytes
  sid,      // a security identifier, 72 bytes
  reserved  // bytes or bits that a request has to leave zero; not printed
};

struct Field {
  std::uint32_t offset = 0;
  std::uint32_t size = 0;
  As as = As::reserved;
  std::uint8_t mask = 0xff;    // the bits of a field of one byte
  const char* name = nullptr;  // in the log
  const char* what = nullptr;  // of names and reserved bytes, for the line about a wrong one
};

/// Where a field is written: a record, or a body that remembers it.
inline Bytes placeOf(Bytes record, const Field& field) {
  return part(record, field.offset, field.size);
}
inline Bytes placeOf(Body& body, const Field& field) {
  return body.reply(field.offset, field.size);
}

template <typename T, As kind>
struct NumberField : Field {
  constexpr NumberField() = default;
  constexpr NumberField(std::uint32_t at, const char* called)
      : Field{at, sizeof(T), kind, 0xff, called} {}

  T get(ConstBytes record) const { return ordered(getHost<T>(record, offset)); }

  template <typename Target>
  void put(Target&& target, T value) const {
    putHost<T>(placeOf(target, *this), 0, ordered(value));
  }

 private:
  static T ordered(T value) {
    if constexpr (kind == As::network) {
      T swapped = 0;
      for (std::size_t i = 0; i < sizeof value; ++i) {
        swapped = static_cast<T>(swapped << 8 | (value >> (8 * i) & 0xff));
      }
      return swapped;
    }
    return value;
  }
};
static_assert(std::endian::native == std::endian::little);

using U8 = NumberField<std::uint8_t, As::number>;
using U16 = NumberField<std::uint16_t, As::number>;
using U32 = NumberField<std::uint32_t, As::number>;
using U64 = NumberField<std::uint64_t, As::number>;
using Net16 = NumberField<std::uint16_t, As::network>;
using Net32 = NumberField<std::uint32_t, As::network>;
using Net64 = NumberField<std::uint64_t, As::network>;
using Hex32 = NumberField<std::uint32_t, As::hex>;
using Hex64 = NumberField<std::uint64_t, As::hex>;

/// Bits of a byte from the lowest on, by their mask. The byte's other bits stay as they are.
struct Bits : Field {
  constexpr Bits(std::uint32_t at, std::uint8_t bits, const char* called)
      : Field{at, 1, As::number, bits, called} {}
  unsigned get(ConstBytes record) const { return get8(record, offset) & unsigned{mask}; }
  template <typename Target>
  void put(Target&& target, unsigned value) const {
    const Bytes place = placeOf(target, *this);
    put8(place, 0, static_cast<std::uint8_t>((get8(place, 0) & ~unsigned{mask}) | (value & mask)));
  }
};

struct Text : Field {
  constexpr Text(std::uint32_t at, std::uint32_t bytes, const char* called)
      : Field{at, bytes, As::text, 0xff, called} {}
  std::string_view get(ConstBytes record) const { return getText(record, offset, size); }

  /// Cuts the text to leave a NUL, and clears the rest of the field.
  template <typename Target>
  void put(Target&& target, std::string_view value) const {
    putText(placeOf(target, *this), 0, size, value);
  }
};

/// A text that a request has to pad with zeros; `whose` says what it names, as in "rule set".
struct Name : Text {
  constexpr Name(std::uint32_t at, std::uint32_t bytes, const char* called, const char* whose)
      : Text(at, bytes, called) {
    as = As::name;
    what = whose;
  }
};

struct Blob : Field {
  constexpr Blob(std::uint32_t at, std::uint32_t bytes, const char* called, As kind = As::bytes)
      : Field{at, bytes, kind, 0xff, called} {}
  ConstBytes get(ConstBytes record) const { return part(record, offset, size); }

  /// Clears what the value does not fill.
  template <typename Target>
  void put(Target&& target, ConstBytes value) const {
    const Bytes place = placeOf(target, *this);
    std::memset(place.data(), 0, place.size());
    std::memcpy(place.data(), value.data(), std::min(place.size(), value.size()));
  }
};

/// Reserved bytes, or reserved bits of one byte. `whose` is what the line about them begins with;
/// without it, that is the command or request.
struct Reserved : Field {
  constexpr Reserved(std::uint32_t at, std::uint32_t bytes, const char* whose = nullptr,
                     std::uint8_t bits = 0xff)
      : Field{at, bytes, As::reserved, bits, nullptr, whose} {}
};

/// The fields of one request, reply or record. More than `limit` do not compile.
class FieldList {
 public:
  static constexpr std::size_t limit = 24;

  constexpr FieldList() = default;
  constexpr FieldList(std::initializer_list<Field> fields) {
    for (const Field& field : fields) fields_.at(count_++) = field;
  }
  constexpr const Field* begin() const { return fields_.data(); }
  constexpr const Field* end() const { return fields_.data() + count_; }
  constexpr bool empty() const { return count_ == 0; }

 private:
  std::array<Field, limit> fields_{};
  std::size_t count_ = 0;
};

/// One kind of the records that a body holds many of. The log prints a line for each: `text`, or
/// its fields. Those without a size of their own are printed all at once by `lines`, which gets
/// everything from the first one on.
struct RecordKind {
  std::size_t size = 0;
  std::string (*text)(ConstBytes record) = nullptr;
  FieldList fields = {};
  std::vector<std::string> (*lines)(ConstBytes records) = nullptr;
};

/// Where the records of a body stand, and the fields that say how many.
struct List {
  const RecordKind* record = nullptr;  // null for a body without records
  bool inRequest = false;
  Field count = {};    // of the records that are there; a number of any size
  std::size_t at = 0;  // offset of the first one, without the ids
  U32 max = {};        // of a request for a part of a list: how many records it takes,
  U32 from = {};       // and from which one on
  U32 ids = {};        // how many ids of 4 bytes stand before the records; size 0 for none

  /// How many bytes of ids stand before the records.
  std::uint64_t idBytes(ConstBytes body) const {
    return ids.size == 0 ? 0 : 4 * std::uint64_t{ids.get(body)};
  }
};

/// The value of a number of any size, in the order and of the bits that its field has.
std::uint64_t numberOf(const Field& field, ConstBytes body);

/// What is wrong with the reserved bytes, or with the names, of a request; empty when nothing is.
/// Reserved bytes after the end of a short body are not missed. `title` is the request's own.
std::string reservedFault(const FieldList& fields, ConstBytes body, const std::string& title);
std::string nameFault(const FieldList& fields, ConstBytes body);

/// The fields as the log prints them: "name value, name value". Ends at the first one that the body
/// is too short for.
std::string fieldsText(const FieldList& fields, ConstBytes body);

}  // namespace TarnLab

#endif
