#include "TarnFWException.h"

#include <arpa/inet.h>

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdio>

namespace TarnFirewall {

namespace {

/// Formatted numbers go through a buffer of 256 bytes; a longer text is cut there.
__attribute__((format(printf, 1, 2))) std::string message(const char* format, ...) {
  char text[256];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  return text;
}

std::string join(std::string_view first, std::string_view second) {
  std::string text(first);
  text += second;
  return text;
}

std::string addressText(int family, const void* address) {
  char text[INET6_ADDRSTRLEN] = "";
  inet_ntop(family, address, text, sizeof text);
  return text;
}

const char* protocolSpecWord(int type) {
  // The slash in front of the fourth word is part of the text that scripts match.
  static constexpr std::array<const char*, 12> words = {"min protocol spec placeholder",
                                                        "tcp/udp port",
                                                        "tcp/udp port range",
                                                        "/tcp/udp port set",
                                                        "tcp flags",
                                                        "tcp options",
                                                        "icmp type",
                                                        "no state",
                                                        "dscp",
                                                        "tcp strict",
                                                        "tcp sloppy",
                                                        "max protocol spec placeholder"};
  const int first = 115;
  if (type < first || type >= first + static_cast<int>(words.size())) return words[0];
  return words[static_cast<std::size_t>(type - first)];
}

}  // namespace

CUnsupportedException::CUnsupportedException(int code, std::string_view text)
    : CTarnFWException(std::string(text), code) {}
CUnsupportedException::CUnsupportedException(std::string_view text)
    : CTarnFWException(std::string(text), FW_STATUS_NOT_SUPPORTED) {}
CUnsupportedException::CUnsupportedException(std::string_view text, int number)
    : CTarnFWException(join(text, message("%d", number)), FW_STATUS_NOT_SUPPORTED) {}
CUnsupportedException::CUnsupportedException(std::string_view text, unsigned int number)
    : CTarnFWException(join(text, message("%u", number)), FW_STATUS_NOT_SUPPORTED) {}
CUnsupportedException::CUnsupportedException(std::string_view text, std::string_view more)
    : CTarnFWException(join(text, more), FW_STATUS_NOT_SUPPORTED) {}

CInvalidTimeoutException::CInvalidTimeoutException(std::string_view name)
    : CTarnFWException(join("unrecognized timeout ", name), FW_STATUS_INVALID_TIMEOUT) {}
CInvalidTimeoutException::CInvalidTimeoutException(unsigned int id)
    : CTarnFWException(join("unrecognized timeout id ", message("%u", id)),
                       FW_STATUS_INVALID_TIMEOUT) {}

CInvalidAddressException::CInvalidAddressException(std::string_view text)
    : CTarnFWException(std::string(text), FW_STATUS_INVALID_ADDRESS) {}
CInvalidAddressException::CInvalidAddressException(std::string_view text, unsigned int number)
    : CTarnFWException(join(text, message(": %d", static_cast<int>(number))),
                       FW_STATUS_INVALID_ADDRESS) {}

CInvalidAddrSetTypeException::CInvalidAddrSetTypeException(int type)
    : CTarnFWException(message("invalid addrset type: %d", type), FW_STATUS_INVALID_ADDRSET_TYPE) {}

CInvalidRuleActionException::CInvalidRuleActionException(unsigned int action)
    : CTarnFWException(message("invalid rule action: %u", action), FW_STATUS_INVALID_RULE_ACTION) {}

CInsufficientMsgBufException::CInsufficientMsgBufException(unsigned int expected, unsigned int got)
    : CTarnFWException(
          message("expect %u byte in message buffer, but only get %u bytes", expected, got),
          FW_STATUS_BUFFER_TOO_SMALL) {}

CInvalidEtherRangeException::CInvalidEtherRangeException(std::string_view text)
    : CTarnFWException(std::string(text), FW_STATUS_INVALID_ADDRESS) {}

CInvalidIPv4RangeException::CInvalidIPv4RangeException(in_addr first, in_addr last)
    : CTarnFWException(message("invalid IPv4 range: %s - %s", addressText(AF_INET, &first).c_str(),
                               addressText(AF_INET, &last).c_str()),
                       FW_STATUS_INVALID_ADDRESS) {}

CInvalidIPv6RangeException::CInvalidIPv6RangeException(const in6_addr& first, const in6_addr& last)
    : CTarnFWException(message("invalid IPv6 range: %s - %s", addressText(AF_INET6, &first).c_str(),
                               addressText(AF_INET6, &last).c_str()),
                       FW_STATUS_INVALID_ADDRESS) {}

CCannotOpenDevException::CCannotOpenDevException(std::string_view device, int error)
    : CTarnFWException(message("cannot open device %s: %d", std::string(device).c_str(), error),
                       FW_STATUS_CANNOT_LOAD_FILE) {}

CIoctlException::CIoctlException(std::string_view text, int error)
    : CTarnFWException(std::string(text),
                       error == ENOMEM ? FW_STATUS_KERNEL_OUT_OF_MEMORY : FW_STATUS_IOCTL_FAILED) {}

CPortNotFoundException::CPortNotFoundException(std::string_view text)
    : CTarnFWException(std::string(text), FW_STATUS_PORT_NOT_FOUND) {}

CInvalidL4PortException::CInvalidL4PortException(unsigned int port)
    : CTarnFWException(message("invalid TCP/UDP port: %u", port), FW_STATUS_INVALID_L4_PORT) {}
CInvalidL4PortException::CInvalidL4PortException(std::string_view text)
    : CTarnFWException(join("invalid TCP/UDP port: ", text), FW_STATUS_INVALID_L4_PORT) {}

CInvalidL4PortRangeException::CInvalidL4PortRangeException(unsigned int low, unsigned int high)
    : CTarnFWException(message("invalid TCP/UDP port range: %u - %u", low, high),
                       FW_STATUS_INVALID_L4_PORT) {}
CInvalidL4PortRangeException::CInvalidL4PortRangeException(std::string_view text)
    : CTarnFWException(message("invalid TCP/UDP port range: %s", std::string(text).c_str()),
                       FW_STATUS_INVALID_L4_PORT) {}

CIntegerOverflowException::CIntegerOverflowException(std::string_view text, int number)
    : CTarnFWException(join(text, message(": %d", number)), FW_STATUS_INTEGER_TOO_LARGE) {}

COutOfMemoryException::COutOfMemoryException(int size)
    : CTarnFWException(message("out of memory while trying to alloc %d bytes memory", size),
                       FW_STATUS_OUT_OF_MEMORY) {}

CBufferTooSmallException::CBufferTooSmallException(int size)
    : CTarnFWException(message("input buffer of %d bytes is too small", size),
                       FW_STATUS_BUFFER_TOO_SMALL) {}

CCannotOpenFileException::CCannotOpenFileException(std::string_view name, std::string_view reason)
    : CTarnFWException(join(join(name, " : "), reason), FW_STATUS_CANNOT_LOAD_FILE) {}

CCannotInitializeIOException::CCannotInitializeIOException(int type)
    : CTarnFWException(message("cannot initialize IO channel: %d", type),
                       FW_STATUS_CANNOT_INITIALIZE_IO) {}

CUnknownProtocolSpecTypeException::CUnknownProtocolSpecTypeException(int type)
    : CTarnFWException(message("unknown protocol spec type: %d", type),
                       FW_STATUS_INVALID_PROTOCOL_SPEC) {}

CUnknownMsgBufTypeException::CUnknownMsgBufTypeException(int type)
    : CTarnFWException(message("unknown message buffer type: %d", type),
                       FW_STATUS_INVALID_ARGUMENT) {}

CUnknownIOTypeException::CUnknownIOTypeException(int type)
    : CTarnFWException(message("unknown IO channel type: %d", type), FW_STATUS_UNKNOWN_IO_CHANNEL) {
}

CUnknownSocketTypeException::CUnknownSocketTypeException(int type)
    : CTarnFWException(message("unknown socket type: %d", type), FW_STATUS_SOCKET_ERROR) {}

CTooManyL4PortException::CTooManyL4PortException(int count)
    : CTarnFWException(message("too many TCP/UDP port: %d", count), FW_STATUS_TOO_MANY_L4_PORTS) {}
CTooManyL4PortException::CTooManyL4PortException(std::string_view text)
    : CTarnFWException(message("too many TCP/UDP port: %s", std::string(text).c_str()),
                       FW_STATUS_TOO_MANY_L4_PORTS) {}

CInvalidRuleDirectionException::CInvalidRuleDirectionException(int direction)
    : CTarnFWException(message("invalid rule action id: %d", direction),
                       FW_STATUS_INVALID_RULE_DIRECTION) {}

CInvalidProtocolSpecDirException::CInvalidProtocolSpecDirException(int dir)
    : CTarnFWException(message("invalid protocol spec dir (0-2): %d", dir),
                       FW_STATUS_INVALID_PROTOCOL_SPEC) {}

CInvalidTCPFlagsException::CInvalidTCPFlagsException(unsigned int flags)
    : CTarnFWException(message("invalid TCP flags: 0x%04x", flags), FW_STATUS_INVALID_TCP_FLAGS) {}

CIDTooLongException::CIDTooLongException(std::string_view id)
    : CTarnFWException(message("id is too long: %s", std::string(id).c_str()),
                       FW_STATUS_ID_TOO_LONG) {}

CTCPOptionsTooLongException::CTCPOptionsTooLongException(int length)
    : CTarnFWException(message("TCP options is too long: %d", length),
                       FW_STATUS_INVALID_TCP_OPTIONS) {}

CDuplicateProtocolSpecException::CDuplicateProtocolSpecException(int type)
    : CTarnFWException(
          message("duplicate definition of protocol spec of %s", protocolSpecWord(type)),
          FW_STATUS_INVALID_PROTOCOL_SPEC) {}

CSocketException::CSocketException(std::string_view text)
    : CTarnFWException(std::string(text), FW_STATUS_SOCKET_ERROR) {}

CIpfixPacketFullException::CIpfixPacketFullException()
    : CTarnFWException("", FW_STATUS_IPFIX_PACKET_FULL) {}

CInvalidInputDataException::CInvalidInputDataException(std::string_view text)
    : CTarnFWException(std::string(text), FW_STATUS_INVALID_INPUT_BUFFER) {}

CUnknownIpfixTemplateTypeException::CUnknownIpfixTemplateTypeException(int type)
    : CTarnFWException(message("Unknown template: %d", type), FW_STATUS_NOT_SUPPORTED) {}

CIpfixFWException::CIpfixFWException(std::string_view text)
    : CTarnFWException(std::string(text), FW_STATUS_INTERNAL_ERROR) {}

CInvalidAttrKey::CInvalidAttrKey(std::string_view text)
    : CTarnFWException(join("invalid attribute key ", text), FW_STATUS_INVALID_ATTRIBUTE_KEY) {}

CInvalidAttrValue::CInvalidAttrValue(std::string_view text)
    : CTarnFWException(join("invalid attribute value ", text), FW_STATUS_INVALID_ATTRIBUTE_VALUE) {}

CUnmappedEIntAttribute::CUnmappedEIntAttribute(std::string_view text)
    : CTarnFWException(join("unmapped attribute value ", text), FW_STATUS_UNMAPPED_EINT_ATTRIBUTE) {
}

CInvalidUidException::CInvalidUidException()
    : CTarnFWException("missing uid to sid mapping", FW_STATUS_NO_UID_TO_SID_MAPPING) {}

CInvalidContainerNameException::CInvalidContainerNameException(std::string_view name,
                                                               std::string_view reason)
    : CTarnFWException(join(join(join(join("invalid container name: ", name), "("), reason), ")"),
                       FW_STATUS_INVALID_CONTAINER_NAME) {}

}  // namespace TarnFirewall
