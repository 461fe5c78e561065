// What the kernel learned about a flow by looking into its packets.
#include "LabFlowRecord.h"
#include "LabText.h"

namespace TarnLab {

namespace {

// The head of an attribute; its value follows.
constexpr std::size_t headSize = 10;
constexpr U16 key{0, "key"}, type{2, "type"};
constexpr U32 total{4, "length"};

constexpr unsigned signedNumber = 0, unsignedNumber = 1, encoded = 2, identifier = 3, sid = 4,
                   newerType = 7;

/// Numbers go from `first` on and begin again after `range` of them. Names have the number of the
/// attribute in the place of %u. A sid has so many sub-authorities, and a revision.
struct Form {
  std::uint16_t key;
  std::uint16_t type;
  std::int64_t first = 0;
  std::uint64_t range = 1;
  const char* name = nullptr;
  std::uint8_t authorities = 0;
  std::uint8_t revision = 1;
};

// Every type and key, and what stands in none of the tables of names.
constexpr Form forms[] = {
    {.key = 0, .type = encoded, .first = 70, .range = 1900},
    {.key = 5, .type = identifier, .name = "/shop/items/%u"},
    {.key = 7, .type = identifier, .name = "db%u.kelpco.example"},
    {.key = 1, .type = encoded, .first = 767, .range = 6},
    {.key = 2, .type = encoded, .first = 0, .range = 186},
    {.key = 8, .type = sid, .authorities = 5},
    {.key = 4, .type = encoded, .first = 0, .range = 8},
    {.key = 11, .type = identifier},
    {.key = 2, .type = encoded, .first = 49153, .range = 59},
    {.key = 3, .type = encoded, .first = 0, .range = 3},
    {.key = 10, .type = unsignedNumber, .first = -0x61c8864680b583eb, .range = 1000000},
    {.key = 6, .type = encoded, .first = 0, .range = 4},
    {.key = 9, .type = sid, .authorities = 15},
    {.key = 12, .type = signedNumber, .first = -40000, .range = 39999},
    {.key = 11, .type = identifier, .name = "profile-%u"},
    {.key = 9, .type = sid, .authorities = 0},
    {.key = 0, .type = encoded, .first = -1},
    {.key = 0, .type = encoded, .first = 1976},
    {.key = 1, .type = encoded, .first = 773},
    {.key = 2, .type = encoded, .first = 186},
    {.key = 5, .type = encoded, .first = 1},
    {.key = 7, .type = encoded, .first = 2},
    {.key = 8, .type = sid, .authorities = 2, .revision = 2},
    {.key = 9, .type = sid, .authorities = 16},
    {.key = 6, .type = newerType, .first = 3},
};

constexpr std::uint8_t mostAuthorities = 15;

std::size_t sizeOf(const Form& form, const std::string& name) {
  switch (form.type) {
    case identifier:
      return headSize + 16 + 2 + (name.empty() ? 0 : name.size() + 1);
    case sid:
      return headSize + 12 + 4 * std::size_t{mostAuthorities};
    default:
      return headSize + 8;
  }
}

void putIdentifier(Bytes attribute, const std::string& name, std::uint32_t round) {
  for (std::size_t i = 0; i < 16; ++i) {
    put8(attribute, headSize + i, static_cast<std::uint8_t>(0x16 + 13 * i + round));
  }
  put16(attribute, 26, static_cast<std::uint16_t>(name.empty() ? 0 : name.size() + 1));
  if (!name.empty()) putText(attribute, 28, name.size() + 1, name);
}

void putSid(Bytes attribute, const Form& form, std::uint32_t round) {
  put8(attribute, 14, form.revision);
  put8(attribute, 15, form.authorities);
  put8(attribute, 21, 5);  // the authority is a number of 6 bytes, in network order
  for (std::size_t i = 0; i < std::min(form.authorities, mostAuthorities); ++i) {
    put32(attribute, 22 + 4 * i, static_cast<std::uint32_t>(i == 0 ? 21 : 1000 * i + round));
  }
}

std::size_t appendOne(ByteVector& buffer, std::uint32_t place) {
  const Form& form = forms[place % std::size(forms)];
  const auto round = place / static_cast<std::uint32_t>(std::size(forms));
  std::string name = form.name != nullptr ? form.name : "";
  if (const std::size_t at = name.find("%u"); at != std::string::npos) {
    name.replace(at, 2, std::to_string(round));
  }
  const std::size_t size = sizeOf(form, name);
  buffer.resize(buffer.size() + size);
  const Bytes attribute = Bytes(buffer).last(size);
  key.put(attribute, form.key);
  type.put(attribute, form.type);
  total.put(attribute, static_cast<std::uint32_t>(size));
  if (form.type == identifier) {
    putIdentifier(attribute, name, round);
  } else if (form.type == sid) {
    putSid(attribute, form, round);
  } else {
    put64(attribute, headSize, static_cast<std::uint64_t>(form.first) + round % form.range);
  }
  return size;
}

}  // namespace

/// Of four flows in turn the first has none and the last has three, so that the six attributes of
/// four flows are the next ones of the forms. Only IP flows have any.
FlowAttributes::Size FlowAttributes::append(ByteVector& buffer, ConstBytes flow) {
  Size size;
  if (!FlowRecord::isIp(flow)) return size;
  const std::uint32_t number = FlowNumber::ofId(FlowRecord::id.get(flow));
  const std::uint32_t turn = number % 4;
  const std::uint32_t first = number / 4 * 6 + turn * (turn - 1) / 2;
  for (; size.count < turn; ++size.count) size.bytes += appendOne(buffer, first + size.count);
  return size;
}

}  // namespace TarnLab
