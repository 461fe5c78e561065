#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <cerrno>

#include "Expect.h"
#include "TarnFWException.h"

using namespace TarnFirewall;

namespace {

in_addr v4(const char* text) {
  in_addr address{};
  inet_pton(AF_INET, text, &address);
  return address;
}

in6_addr v6(const char* text) {
  in6_addr address{};
  inet_pton(AF_INET6, text, &address);
  return address;
}

}  // namespace

TEST(Exception, BaseHasCodeFiveUnlessOneIsGiven) {
  EXPECT_THROW_WITH(throw CTarnFWException("oops"), CTarnFWException, 5, "oops");
}

TEST(Exception, UnsupportedJoinsItsParts) {
  EXPECT_THROW_WITH(throw CUnsupportedException(53, "text"), CUnsupportedException, 53, "text");
  EXPECT_THROW_WITH(throw CUnsupportedException("text"), CUnsupportedException, 7, "text");
  EXPECT_THROW_WITH(throw CUnsupportedException("text ", -3), CUnsupportedException, 7, "text -3");
  EXPECT_THROW_WITH(throw CUnsupportedException("text ", 4294967295u), CUnsupportedException, 7,
                    "text 4294967295");
  EXPECT_THROW_WITH(throw CUnsupportedException("text ", "more"), CUnsupportedException, 7,
                    "text more");
}

TEST(Exception, EveryClassHasItsCodeAndText) {
  EXPECT_THROW_WITH(throw CInvalidTimeoutException("dfw.x"), CInvalidTimeoutException, 58,
                    "unrecognized timeout dfw.x");
  EXPECT_THROW_WITH(throw CInvalidTimeoutException(23u), CInvalidTimeoutException, 58,
                    "unrecognized timeout id 23");
  EXPECT_THROW_WITH(throw CInvalidAddressException("1.2.3"), CInvalidAddressException, 33, "1.2.3");
  EXPECT_THROW_WITH(throw CInvalidAddressException("unknown address type", 8u),
                    CInvalidAddressException, 33, "unknown address type: 8");
  EXPECT_THROW_WITH(throw CInvalidAddrSetTypeException(9), CInvalidAddrSetTypeException, 34,
                    "invalid addrset type: 9");
  EXPECT_THROW_WITH(throw CInvalidRuleActionException(15u), CInvalidRuleActionException, 37,
                    "invalid rule action: 15");
  EXPECT_THROW_WITH(throw CInsufficientMsgBufException(36u, 3u), CInsufficientMsgBufException, 9,
                    "expect 36 byte in message buffer, but only get 3 bytes");
  EXPECT_THROW_WITH(throw CInvalidEtherRangeException("r"), CInvalidEtherRangeException, 33, "r");
  EXPECT_THROW_WITH(throw CInvalidIPv4RangeException(v4("10.0.0.9"), v4("10.0.0.5")),
                    CInvalidIPv4RangeException, 33, "invalid IPv4 range: 10.0.0.9 - 10.0.0.5");
  EXPECT_THROW_WITH(throw CInvalidIPv6RangeException(v6("2001:db8::2"), v6("2001:db8::1")),
                    CInvalidIPv6RangeException, 33,
                    "invalid IPv6 range: 2001:db8::2 - 2001:db8::1");
  EXPECT_THROW_WITH(throw CCannotOpenDevException("/dev/x", ENOENT), CCannotOpenDevException, 12,
                    "cannot open device /dev/x: 2");
  EXPECT_THROW_WITH(throw CPortNotFoundException("p"), CPortNotFoundException, 21, "p");
  EXPECT_THROW_WITH(throw CInvalidL4PortException(70000u), CInvalidL4PortException, 38,
                    "invalid TCP/UDP port: 70000");
  EXPECT_THROW_WITH(throw CInvalidL4PortException("x"), CInvalidL4PortException, 38,
                    "invalid TCP/UDP port: x");
  EXPECT_THROW_WITH(throw CInvalidL4PortRangeException(90u, 80u), CInvalidL4PortRangeException, 38,
                    "invalid TCP/UDP port range: 90 - 80");
  EXPECT_THROW_WITH(throw CInvalidL4PortRangeException("9-8"), CInvalidL4PortRangeException, 38,
                    "invalid TCP/UDP port range: 9-8");
  EXPECT_THROW_WITH(throw CIntegerOverflowException("too many addresses", 7),
                    CIntegerOverflowException, 17, "too many addresses: 7");
  EXPECT_THROW_WITH(throw COutOfMemoryException(24), COutOfMemoryException, 8,
                    "out of memory while trying to alloc 24 bytes memory");
  EXPECT_THROW_WITH(throw CBufferTooSmallException(10), CBufferTooSmallException, 9,
                    "input buffer of 10 bytes is too small");
  EXPECT_THROW_WITH(throw CCannotOpenFileException("f", "No such file"), CCannotOpenFileException,
                    12, "f : No such file");
  EXPECT_THROW_WITH(throw CCannotInitializeIOException(9), CCannotInitializeIOException, 10,
                    "cannot initialize IO channel: 9");
  EXPECT_THROW_WITH(throw CUnknownProtocolSpecTypeException(7), CUnknownProtocolSpecTypeException,
                    43, "unknown protocol spec type: 7");
  EXPECT_THROW_WITH(throw CUnknownIOTypeException(7), CUnknownIOTypeException, 15,
                    "unknown IO channel type: 7");
  EXPECT_THROW_WITH(throw CUnknownSocketTypeException(1), CUnknownSocketTypeException, 11,
                    "unknown socket type: 1");
  EXPECT_THROW_WITH(throw CTooManyL4PortException(16), CTooManyL4PortException, 39,
                    "too many TCP/UDP port: 16");
  EXPECT_THROW_WITH(throw CTooManyL4PortException("1,2"), CTooManyL4PortException, 39,
                    "too many TCP/UDP port: 1,2");
  EXPECT_THROW_WITH(throw CInvalidRuleDirectionException(3), CInvalidRuleDirectionException, 42,
                    "invalid rule action id: 3");
  EXPECT_THROW_WITH(throw CInvalidProtocolSpecDirException(3), CInvalidProtocolSpecDirException, 43,
                    "invalid protocol spec dir (0-2): 3");
  EXPECT_THROW_WITH(throw CInvalidTCPFlagsException(0x200u), CInvalidTCPFlagsException, 40,
                    "invalid TCP flags: 0x0200");
  EXPECT_THROW_WITH(throw CIDTooLongException("name"), CIDTooLongException, 32,
                    "id is too long: name");
  EXPECT_THROW_WITH(throw CTCPOptionsTooLongException(41), CTCPOptionsTooLongException, 41,
                    "TCP options is too long: 41");
  EXPECT_THROW_WITH(throw CSocketException("s"), CSocketException, 11, "s");
  EXPECT_THROW_WITH(throw CIpfixPacketFullException(), CIpfixPacketFullException, 50, "");
  EXPECT_THROW_WITH(throw CInvalidInputDataException("d"), CInvalidInputDataException, 4, "d");
  EXPECT_THROW_WITH(throw CUnknownIpfixTemplateTypeException(4), CUnknownIpfixTemplateTypeException,
                    7, "Unknown template: 4");
  EXPECT_THROW_WITH(throw CIpfixFWException("i"), CIpfixFWException, 6, "i");
  EXPECT_THROW_WITH(throw CInvalidAttrKey("12"), CInvalidAttrKey, 66, "invalid attribute key 12");
  EXPECT_THROW_WITH(throw CInvalidAttrValue("v"), CInvalidAttrValue, 67,
                    "invalid attribute value v");
  EXPECT_THROW_WITH(throw CUnmappedEIntAttribute("v"), CUnmappedEIntAttribute, 68,
                    "unmapped attribute value v");
  EXPECT_THROW_WITH(throw CInvalidUidException(), CInvalidUidException, 70,
                    "missing uid to sid mapping");
  EXPECT_THROW_WITH(throw CInvalidContainerNameException("n", "r"), CInvalidContainerNameException,
                    69, "invalid container name: n(r)");
}

TEST(Exception, SignedNumbersKeepTheirSignAndUnsignedOnesHaveNone) {
  EXPECT_THROW_WITH(throw CInvalidAddressException("t", 4294967295u), CInvalidAddressException, 33,
                    "t: -1");
  EXPECT_THROW_WITH(throw CInvalidAddrSetTypeException(-1), CInvalidAddrSetTypeException, 34,
                    "invalid addrset type: -1");
  EXPECT_THROW_WITH(throw CIntegerOverflowException("t", -1), CIntegerOverflowException, 17,
                    "t: -1");
  EXPECT_THROW_WITH(throw COutOfMemoryException(-1), COutOfMemoryException, 8,
                    "out of memory while trying to alloc -1 bytes memory");
  EXPECT_THROW_WITH(throw CBufferTooSmallException(-1), CBufferTooSmallException, 9,
                    "input buffer of -1 bytes is too small");
  EXPECT_THROW_WITH(throw CCannotInitializeIOException(-1), CCannotInitializeIOException, 10,
                    "cannot initialize IO channel: -1");
  EXPECT_THROW_WITH(throw CUnknownProtocolSpecTypeException(-1), CUnknownProtocolSpecTypeException,
                    43, "unknown protocol spec type: -1");
  EXPECT_THROW_WITH(throw CUnknownMsgBufTypeException(-1), CUnknownMsgBufTypeException, 3,
                    "unknown message buffer type: -1");
  EXPECT_THROW_WITH(throw CUnknownIOTypeException(-1), CUnknownIOTypeException, 15,
                    "unknown IO channel type: -1");
  EXPECT_THROW_WITH(throw CUnknownSocketTypeException(-1), CUnknownSocketTypeException, 11,
                    "unknown socket type: -1");
  EXPECT_THROW_WITH(throw CTooManyL4PortException(-1), CTooManyL4PortException, 39,
                    "too many TCP/UDP port: -1");
  EXPECT_THROW_WITH(throw CInvalidRuleDirectionException(-1), CInvalidRuleDirectionException, 42,
                    "invalid rule action id: -1");
  EXPECT_THROW_WITH(throw CInvalidProtocolSpecDirException(-1), CInvalidProtocolSpecDirException,
                    43, "invalid protocol spec dir (0-2): -1");
  EXPECT_THROW_WITH(throw CTCPOptionsTooLongException(-1), CTCPOptionsTooLongException, 41,
                    "TCP options is too long: -1");
  EXPECT_THROW_WITH(throw CUnknownIpfixTemplateTypeException(-1),
                    CUnknownIpfixTemplateTypeException, 7, "Unknown template: -1");
  EXPECT_THROW_WITH(throw CInvalidTimeoutException(4294967295u), CInvalidTimeoutException, 58,
                    "unrecognized timeout id 4294967295");
  EXPECT_THROW_WITH(throw CInvalidRuleActionException(4294967295u), CInvalidRuleActionException, 37,
                    "invalid rule action: 4294967295");
  EXPECT_THROW_WITH(throw CInsufficientMsgBufException(4294967295u, 4294967294u),
                    CInsufficientMsgBufException, 9,
                    "expect 4294967295 byte in message buffer, but only get 4294967294 bytes");
  EXPECT_THROW_WITH(throw CInvalidL4PortException(4294967295u), CInvalidL4PortException, 38,
                    "invalid TCP/UDP port: 4294967295");
  EXPECT_THROW_WITH(throw CInvalidL4PortRangeException(4294967295u, 4294967294u),
                    CInvalidL4PortRangeException, 38,
                    "invalid TCP/UDP port range: 4294967295 - 4294967294");
  EXPECT_THROW_WITH(throw CInvalidTCPFlagsException(0xABCDEFu), CInvalidTCPFlagsException, 40,
                    "invalid TCP flags: 0xabcdef");
}

TEST(Exception, FormattedTextsAreCutAtTheirBufferAndJoinedOnesAreNot) {
  const std::string longText(300, 'x');
  const auto cut = [&](const std::string& start) { return (start + longText).substr(0, 255); };
  EXPECT_THROW_WITH(throw CIDTooLongException(longText), CIDTooLongException, 32,
                    cut("id is too long: "));
  EXPECT_THROW_WITH(throw CInvalidL4PortRangeException(longText), CInvalidL4PortRangeException, 38,
                    cut("invalid TCP/UDP port range: "));
  EXPECT_THROW_WITH(throw CTooManyL4PortException(longText), CTooManyL4PortException, 39,
                    cut("too many TCP/UDP port: "));
  EXPECT_THROW_WITH(throw CCannotOpenDevException(longText, 2), CCannotOpenDevException, 12,
                    cut("cannot open device "));
  EXPECT_THROW_WITH(throw CInvalidL4PortException(longText), CInvalidL4PortException, 38,
                    "invalid TCP/UDP port: " + longText);
  EXPECT_THROW_WITH(throw CUnsupportedException(longText, 7), CUnsupportedException, 7,
                    longText + "7");
  EXPECT_THROW_WITH(throw CIntegerOverflowException(longText, 7), CIntegerOverflowException, 17,
                    longText + ": 7");
}

TEST(Exception, IoctlOutOfMemoryIsTheKernelsAndKeepsTheText) {
  EXPECT_THROW_WITH(throw CIoctlException("ioctl failed", ENOMEM), CIoctlException, 65,
                    "ioctl failed");
  EXPECT_THROW_WITH(throw CIoctlException("ioctl failed", EIO), CIoctlException, 19,
                    "ioctl failed");
}

TEST(Exception, UnknownMessageBufferTypeIsAnInvalidArgument) {
  EXPECT_THROW_WITH(throw CUnknownMsgBufTypeException(1), CUnknownMsgBufTypeException, 3,
                    "unknown message buffer type: 1");
}

TEST(Exception, DuplicateProtocolSpecNamesTheSpec) {
  const char* const words[] = {"min protocol spec placeholder",
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
  for (int i = 0; i < 12; ++i) {
    EXPECT_THROW_WITH(throw CDuplicateProtocolSpecException(115 + i),
                      CDuplicateProtocolSpecException, 43,
                      std::string("duplicate definition of protocol spec of ") + words[i]);
  }
  for (const int outside : {-1, 0, 6, 114, 127}) {
    EXPECT_THROW_WITH(throw CDuplicateProtocolSpecException(outside),
                      CDuplicateProtocolSpecException, 43,
                      "duplicate definition of protocol spec of min protocol spec placeholder");
  }
}
