#include "LabAddressRecord.h"

#include <arpa/inet.h>

#include "LabText.h"

namespace TarnLab::AddressRecord {

namespace {

/// Where the value ends that a type uses; nothing for a type that no record may have.
std::size_t valueEnd(unsigned code) {
  switch (code) {
    case any:
      return value;
    case ipv4:
      return 8;
    case ipv6:
      return 20;
    case ipv4Range:
      return 12;
    case ipv6Range:
      return 36;
    case ipv4Cidr:
      return 9;
    case ipv6Cidr:
      return 21;
    case ether:
      return 10;
    case etherRange:
    case etherMask:
      return 16;
    case setName:
      return value + nameSize;
    case intAttribute:
    case unsignedAttribute:
      return 24;
    case stringAttribute:
      return size;
    case sidAttribute:
      return 88;
    default:
      return 0;
  }
}

/// Whether no bit is set after the first `prefix` bits.
bool isMasked(ConstBytes address, unsigned prefix) {
  for (std::size_t i = 0; i < address.size(); ++i) {
    const unsigned byte = static_cast<unsigned>(address[i]);
    const std::size_t first = i * 8;
    if (first >= prefix ? byte != 0
                        : prefix - first < 8 && (byte << (prefix - first) & 0xff) != 0) {
      return false;
    }
  }
  return true;
}

std::string macText(ConstBytes mac) {
  std::string text;
  for (std::size_t i = 0; i < 6; ++i) text += format(i == 0 ? "%02x" : ":%02x", get8(mac, i));
  return text;
}

}  // namespace

std::string ipText(ConstBytes address) {
  char text[INET6_ADDRSTRLEN] = "";
  ::inet_ntop(address.size() == 4 ? AF_INET : AF_INET6, address.data(), text, sizeof text);
  return text;
}

std::string fault(ConstBytes record) {
  const unsigned kind = get16(record, type);
  const std::size_t end = valueEnd(kind);
  if (end == 0) return format("address type %u", kind);
  if ((get8(record, flags) & 0xfe) != 0 || get8(record, reserved) != 0) {
    return "address with reserved bits set";
  }
  if (!isZero(record.subspan(end, size - end))) return "address with bytes after its value";
  switch (kind) {
    case ipv4Range:
      if (std::memcmp(&record[4], &record[8], 4) > 0) return "address range is reversed";
      break;
    case ipv6Range:
      if (std::memcmp(&record[4], &record[20], 16) > 0) return "address range is reversed";
      break;
    case ipv4Cidr:
      if (get8(record, 8) > 32) return format("prefix length %u", get8(record, 8));
      if (!isMasked(record.subspan(4, 4), get8(record, 8))) return "address block is not masked";
      break;
    case ipv6Cidr:
      if (get8(record, 20) > 128) return format("prefix length %u", get8(record, 20));
      if (!isMasked(record.subspan(4, 16), get8(record, 20))) return "address block is not masked";
      break;
    case setName:
      if (get8(record, value) == 0 || get8(record, value + nameSize - 1) != 0) {
        return "address set without a proper name";
      }
      break;
    default:
      break;
  }
  return "";
}

std::string text(ConstBytes record) {
  const unsigned kind = get16(record, type);
  // "any" knows no negation.
  const std::string negation = kind != any && (get8(record, flags) & 1) != 0 ? "not " : "";
  const auto number = [&record](std::size_t at) {
    return static_cast<unsigned long long>(get64(record, at));
  };
  switch (kind) {
    case any:
      return "any";
    case ipv4:
      return negation + "ip " + ipText(part(record, 4, 4));
    case ipv6:
      return negation + "ip " + ipText(part(record, 4, 16));
    case ipv4Range:
      return negation + "ip " + ipText(part(record, 4, 4)) + "-" + ipText(part(record, 8, 4));
    case ipv6Range:
      return negation + "ip " + ipText(part(record, 4, 16)) + "-" + ipText(part(record, 20, 16));
    case ipv4Cidr:
      return negation + "ip " + ipText(part(record, 4, 4)) + format("/%u", get8(record, 8));
    case ipv6Cidr:
      return negation + "ip " + ipText(part(record, 4, 16)) + format("/%u", get8(record, 20));
    case ether:
      return negation + "mac " + macText(part(record, 4, 6));
    case etherRange:
      return negation + "mac " + macText(part(record, 4, 6)) + "-" + macText(part(record, 10, 6));
    case etherMask:
      return negation + "mac " + macText(part(record, 4, 6)) + "/" + macText(part(record, 10, 6));
    case setName:
      return negation + "addrset " + std::string(getText(record, value, nameSize));
    case intAttribute:
      return negation + format("int attr %lld", static_cast<long long>(number(16)));
    case unsignedAttribute:
      return negation + format("unsigned int attr %llu", number(16));
    case stringAttribute:
      return negation + "str attr " + std::string(getText(record, 14, 130));
    case sidAttribute:
      return negation + "sid attr ";
    default:
      return format("address of type %u", kind);
  }
}

}  // namespace TarnLab::AddressRecord
