#include "LabField.h"

#include "LabSid.h"
#include "LabText.h"

namespace TarnLab {

namespace {

std::string digits(ConstBytes bytes, const char* separator) {
  std::string text;
  for (const std::byte byte : bytes) {
    text += format("%s%02x", text.empty() ? "" : separator, static_cast<unsigned>(byte));
  }
  return text;
}

/// The field as text; empty for one that is not worth a line.
std::string valueText(const Field& field, ConstBytes body) {
  const ConstBytes bytes = part(body, field.offset, field.size);
  switch (field.as) {
    case As::number:
    case As::network:
      return format("%llu", static_cast<unsigned long long>(numberOf(field, body)));
    case As::hex:
      return format("0x%llx", static_cast<unsigned long long>(numberOf(field, body)));
    case As::text:
    case As::name:
      return "\"" + printable(getText(bytes, 0, bytes.size())) + "\"";
    case As::bytes:
      return isZero(bytes) ? "" : digits(bytes, "");
    case As::id:
      if (isZero(bytes)) return "";
      return format("%016llx%016llx", static_cast<unsigned long long>(get64(bytes, 0)),
                    static_cast<unsigned long long>(get64(bytes, 8)));
    case As::mac:
      return digits(bytes, ":");
    case As::sid:
      return Sid::text(bytes);
    case As::reserved:
      break;
  }
  return "";
}

}  // namespace

std::uint64_t numberOf(const Field& field, ConstBytes body) {
  const ConstBytes bytes = part(body, field.offset, field.size);
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    value = value << 8 | get8(bytes, field.as == As::network ? i : bytes.size() - 1 - i);
  }
  return bytes.size() == 1 ? value & field.mask : value;
}

std::string reservedFault(const FieldList& fields, ConstBytes body, const std::string& title) {
  for (const Field& field : fields) {
    if (field.as != As::reserved) continue;
    const ConstBytes rest = body.subspan(std::min<std::size_t>(field.offset, body.size()));
    for (const std::byte byte : rest.first(std::min<std::size_t>(field.size, rest.size()))) {
      if ((static_cast<unsigned>(byte) & field.mask) == 0) continue;
      return (field.what != nullptr ? std::string(field.what) : title) + " with reserved bytes set";
    }
  }
  return "";
}

std::string nameFault(const FieldList& fields, ConstBytes body) {
  for (const Field& field : fields) {
    if (field.as != As::name) continue;
    const ConstBytes bytes = part(body, field.offset, field.size);
    const std::size_t length = getText(bytes, 0, bytes.size()).size();
    if (length == bytes.size() || !isZero(bytes.subspan(length))) {
      return std::string(field.what) + " name is not padded with zeros";
    }
  }
  return "";
}

std::string fieldsText(const FieldList& fields, ConstBytes body) {
  std::string text;
  for (const Field& field : fields) {
    if (field.offset > body.size() || field.size > body.size() - field.offset) {
      if (field.as == As::reserved) continue;
      break;
    }
    const std::string value = valueText(field, body);
    if (value.empty()) continue;
    text += (text.empty() ? "" : ", ") + std::string(field.name) + " " + value;
  }
  return text;
}

}  // namespace TarnLab
