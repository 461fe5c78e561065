#pragma once

/// The library's exceptions. Inside the library a refused value is thrown as one of these; the flat
/// `FW_` functions turn it into its status code and never let it pass.

#include <netinet/in.h>

#include <exception>
#include <string>
#include <string_view>

#include "TarnFWTypes.h"

namespace TarnFirewall {

/// Base of the family: a message and a status code, 5 ("unknown error") where none is given.
class CTarnFWException : public std::exception {
 public:
  explicit CTarnFWException(std::string message, int code = FW_STATUS_UNKNOWN_ERROR)
      : message_(std::move(message)), code_(code) {}

  const char* what() const noexcept override { return message_.c_str(); }
  virtual int retcode() const noexcept { return code_; }

 private:
  std::string message_;
  int code_;
};

/// Something that the library or the kernel does not do. Status 7, or the one passed.
class CUnsupportedException : public CTarnFWException {
 public:
  CUnsupportedException(int code, std::string_view text);
  explicit CUnsupportedException(std::string_view text);
  CUnsupportedException(std::string_view text, int number);
  CUnsupportedException(std::string_view text, unsigned int number);
  CUnsupportedException(std::string_view text, std::string_view more);
};

class CInvalidTimeoutException : public CTarnFWException {
 public:
  explicit CInvalidTimeoutException(std::string_view name);
  explicit CInvalidTimeoutException(unsigned int id);
};

class CInvalidAddressException : public CTarnFWException {
 public:
  explicit CInvalidAddressException(std::string_view text);
  CInvalidAddressException(std::string_view text, unsigned int number);
};

class CInvalidAddrSetTypeException : public CTarnFWException {
 public:
  explicit CInvalidAddrSetTypeException(int type);
};

class CInvalidRuleActionException : public CTarnFWException {
 public:
  explicit CInvalidRuleActionException(unsigned int action);
};

class CInsufficientMsgBufException : public CTarnFWException {
 public:
  CInsufficientMsgBufException(unsigned int expected, unsigned int got);
};

class CInvalidEtherRangeException : public CTarnFWException {
 public:
  explicit CInvalidEtherRangeException(std::string_view text);
};

class CInvalidIPv4RangeException : public CTarnFWException {
 public:
  CInvalidIPv4RangeException(in_addr first, in_addr last);
};

class CInvalidIPv6RangeException : public CTarnFWException {
 public:
  CInvalidIPv6RangeException(const in6_addr& first, const in6_addr& last);
};

class CCannotOpenDevException : public CTarnFWException {
 public:
  CCannotOpenDevException(std::string_view device, int error);
};

/// Status 65 ("kernel out of memory") when `error` is `ENOMEM`, else 19.
class CIoctlException : public CTarnFWException {
 public:
  CIoctlException(std::string_view text, int error);
};

class CPortNotFoundException : public CTarnFWException {
 public:
  explicit CPortNotFoundException(std::string_view text);
};

class CInvalidL4PortException : public CTarnFWException {
 public:
  explicit CInvalidL4PortException(unsigned int port);
  explicit CInvalidL4PortException(std::string_view text);
};

class CInvalidL4PortRangeException : public CTarnFWException {
 public:
  CInvalidL4PortRangeException(unsigned int low, unsigned int high);
  explicit CInvalidL4PortRangeException(std::string_view text);
};

class CIntegerOverflowException : public CTarnFWException {
 public:
  CIntegerOverflowException(std::string_view text, int number);
};

class COutOfMemoryException : public CTarnFWException {
 public:
  explicit COutOfMemoryException(int size);
};

class CBufferTooSmallException : public CTarnFWException {
 public:
  explicit CBufferTooSmallException(int size);
};

class CCannotOpenFileException : public CTarnFWException {
 public:
  CCannotOpenFileException(std::string_view name, std::string_view reason);
};

class CCannotInitializeIOException : public CTarnFWException {
 public:
  explicit CCannotInitializeIOException(int type);
};

class CUnknownProtocolSpecTypeException : public CTarnFWException {
 public:
  explicit CUnknownProtocolSpecTypeException(int type);
};

/// Status 3 ("invalid argument"): the type is the caller's argument.
class CUnknownMsgBufTypeException : public CTarnFWException {
 public:
  explicit CUnknownMsgBufTypeException(int type);
};

class CUnknownIOTypeException : public CTarnFWException {
 public:
  explicit CUnknownIOTypeException(int type);
};

class CUnknownSocketTypeException : public CTarnFWException {
 public:
  explicit CUnknownSocketTypeException(int type);
};

class CTooManyL4PortException : public CTarnFWException {
 public:
  explicit CTooManyL4PortException(int count);
  explicit CTooManyL4PortException(std::string_view text);
};

/// The text speaks of an action id although the value is a direction: scripts match it as it is.
class CInvalidRuleDirectionException : public CTarnFWException {
 public:
  explicit CInvalidRuleDirectionException(int direction);
};

class CInvalidProtocolSpecDirException : public CTarnFWException {
 public:
  explicit CInvalidProtocolSpecDirException(int dir);
};

class CInvalidTCPFlagsException : public CTarnFWException {
 public:
  explicit CInvalidTCPFlagsException(unsigned int flags);
};

class CIDTooLongException : public CTarnFWException {
 public:
  explicit CIDTooLongException(std::string_view id);
};

class CTCPOptionsTooLongException : public CTarnFWException {
 public:
  explicit CTCPOptionsTooLongException(int length);
};

/// `type` is the object type of a protocol spec, 115 to 126; its word stands in the message. The
/// wire kinds 1 to 6, which a duplicate met while writing carries, get the first word of the table.
class CDuplicateProtocolSpecException : public CTarnFWException {
 public:
  explicit CDuplicateProtocolSpecException(int type);
};

class CSocketException : public CTarnFWException {
 public:
  explicit CSocketException(std::string_view text);
};

class CIpfixPacketFullException : public CTarnFWException {
 public:
  CIpfixPacketFullException();
};

class CInvalidInputDataException : public CTarnFWException {
 public:
  explicit CInvalidInputDataException(std::string_view text);
};

class CUnknownIpfixTemplateTypeException : public CTarnFWException {
 public:
  explicit CUnknownIpfixTemplateTypeException(int type);
};

class CIpfixFWException : public CTarnFWException {
 public:
  explicit CIpfixFWException(std::string_view text);
};

class CInvalidAttrKey : public CTarnFWException {
 public:
  explicit CInvalidAttrKey(std::string_view text);
};

class CInvalidAttrValue : public CTarnFWException {
 public:
  explicit CInvalidAttrValue(std::string_view text);
};

class CUnmappedEIntAttribute : public CTarnFWException {
 public:
  explicit CUnmappedEIntAttribute(std::string_view text);
};

class CInvalidUidException : public CTarnFWException {
 public:
  CInvalidUidException();
};

class CInvalidContainerNameException : public CTarnFWException {
 public:
  CInvalidContainerNameException(std::string_view name, std::string_view reason);
};

}  // namespace TarnFirewall
