#include "LabSid.h"

#include "LabText.h"

namespace TarnLab::Sid {

std::string fault(ConstBytes sid) {
  if (sid.size() != size) return format("sid of %zu bytes", sid.size());
  if (get32(sid, 0) != 0) return "sid with reserved bytes set";
  if (get8(sid, revision) != 1) return format("sid of revision %u", get8(sid, revision));
  const unsigned used = get8(sid, count);
  if (used > most) return format("sid with %u sub-authorities", used);
  const std::size_t end = subAuthorities + std::size_t{4} * used;
  return isZero(part(sid, end, size - end)) ? "" : "sid with bytes after its last sub-authority";
}

std::string text(ConstBytes sid) {
  if (!fault(sid).empty()) return "no sid";
  std::uint64_t number = 0;
  for (std::size_t i = authority; i < subAuthorities; ++i) number = number << 8 | get8(sid, i);
  std::string text = format("S-1-%llu", static_cast<unsigned long long>(number));
  for (unsigned i = 0; i < get8(sid, count); ++i) {
    text += format("-%u", get32(sid, subAuthorities + std::size_t{4} * i));
  }
  return text;
}

ByteVector make(unsigned ofAuthority, std::initializer_list<std::uint32_t> parts) {
  ByteVector sid(size);
  put8(sid, revision, 1);
  put8(sid, count, static_cast<std::uint8_t>(parts.size()));
  put8(sid, subAuthorities - 2, static_cast<std::uint8_t>(ofAuthority >> 8));
  put8(sid, subAuthorities - 1, static_cast<std::uint8_t>(ofAuthority));
  std::size_t at = subAuthorities;
  for (const std::uint32_t each : parts) {
    put32(sid, at, each);
    at += 4;
  }
  return sid;
}

}  // namespace TarnLab::Sid
