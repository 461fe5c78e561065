#pragma once

/// Plain types of the library's flat boundary: status codes, selectors, names and small
/// enumerations. Everything here is shared by the library, its callers and the kernel.

#include <cstdarg>
#include <cstddef>
#include <cstdint>

#include "TarnFWWire.h"

namespace TarnFirewall {

/// Result of every `FW_` function and of a command in the kernel: 0 is success, `FW_StatusToString`
/// gives the text. A kernel may answer any number, so this is an integer and not an enumeration.
using FWStatus_t = std::uint32_t;

enum : FWStatus_t {
  FW_STATUS_OK = 0,
  FW_STATUS_LIB_NOT_INITIALIZED = 1,
  FW_STATUS_INVALID_LIB_HANDLE = 2,
  FW_STATUS_INVALID_ARGUMENT = 3,
  FW_STATUS_INVALID_INPUT_BUFFER = 4,
  FW_STATUS_UNKNOWN_ERROR = 5,
  FW_STATUS_INTERNAL_ERROR = 6,
  FW_STATUS_NOT_SUPPORTED = 7,
  FW_STATUS_OUT_OF_MEMORY = 8,
  FW_STATUS_BUFFER_TOO_SMALL = 9,
  FW_STATUS_CANNOT_INITIALIZE_IO = 10,
  FW_STATUS_SOCKET_ERROR = 11,
  FW_STATUS_CANNOT_LOAD_FILE = 12,
  FW_STATUS_CANNOT_RENAME_FILE = 13,
  FW_STATUS_CANNOT_DELETE_FILE = 14,
  FW_STATUS_UNKNOWN_IO_CHANNEL = 15,
  FW_STATUS_PARSING_ERROR = 16,
  FW_STATUS_INTEGER_TOO_LARGE = 17,
  FW_STATUS_UNSUPPORTED_VERSION = 18,
  FW_STATUS_IOCTL_FAILED = 19,
  FW_STATUS_SLOWPATH_IOCTL_FAILED = 20,
  FW_STATUS_PORT_NOT_FOUND = 21,
  FW_STATUS_KERNEL_UNSUPPORTED = 22,
  FW_STATUS_BAD_TRANSACTION = 23,
  FW_STATUS_BAD_UPDATE = 24,
  FW_STATUS_BAD_MESSAGE = 25,
  FW_STATUS_BAD_STATE = 26,
  FW_STATUS_NO_RULE = 27,
  FW_STATUS_NO_RULESET = 28,
  FW_STATUS_NO_ADDRSET = 29,
  FW_STATUS_NO_ADDRESS = 30,
  FW_STATUS_NAME_TOO_LONG = 31,
  FW_STATUS_ID_TOO_LONG = 32,
  FW_STATUS_INVALID_ADDRESS = 33,
  FW_STATUS_INVALID_ADDRSET_TYPE = 34,
  FW_STATUS_INVALID_ATTRIBUTE = 35,
  FW_STATUS_INVALID_ATTRSET_TYPE = 36,
  FW_STATUS_INVALID_RULE_ACTION = 37,
  FW_STATUS_INVALID_L4_PORT = 38,
  FW_STATUS_TOO_MANY_L4_PORTS = 39,
  FW_STATUS_INVALID_TCP_FLAGS = 40,
  FW_STATUS_INVALID_TCP_OPTIONS = 41,
  FW_STATUS_INVALID_RULE_DIRECTION = 42,
  FW_STATUS_INVALID_PROTOCOL_SPEC = 43,
  FW_STATUS_MISSING_JUMP_TARGET = 44,
  FW_STATUS_INVALID_RULE = 45,
  FW_STATUS_INVALID_RULE_TARGET = 46,
  FW_STATUS_INVALID_VNIC_UUID = 47,
  FW_STATUS_VNIC_UUID_NOT_FOUND = 48,
  FW_STATUS_INVALID_VNIC_UUID_SET = 49,
  FW_STATUS_IPFIX_PACKET_FULL = 50,
  FW_STATUS_MISSING_NAT_TARGET = 51,
  FW_STATUS_UNKNOWN_PROTOCOL_NAME = 52,
  FW_STATUS_RULE_ADDRESS_MISMATCH = 53,
  FW_STATUS_INVALID_SWITCH_UUID = 54,
  FW_STATUS_COMPONENT_NOT_FOUND = 55,
  FW_STATUS_REACHED_MAXIMAL_COMPONENTS = 56,
  FW_STATUS_INVALID_ADDRESS_FAMILY = 57,
  FW_STATUS_INVALID_TIMEOUT = 58,
  FW_STATUS_CANNOT_SAVE_FILE = 59,
  FW_STATUS_BAD_DSCP_MARKINGS = 60,
  FW_STATUS_THRESHOLD_CROSSED = 61,
  FW_STATUS_INVALID_FILTER_NAME = 62,
  FW_STATUS_INVALID_VIF_UUID = 63,
  FW_STATUS_FAILED_TO_GET_CONFIG = 64,
  FW_STATUS_KERNEL_OUT_OF_MEMORY = 65,
  FW_STATUS_INVALID_ATTRIBUTE_KEY = 66,
  FW_STATUS_INVALID_ATTRIBUTE_VALUE = 67,
  FW_STATUS_UNMAPPED_EINT_ATTRIBUTE = 68,
  FW_STATUS_INVALID_CONTAINER_NAME = 69,
  FW_STATUS_NO_UID_TO_SID_MAPPING = 70,
  FW_STATUS_COUNT = 71,
};

/// Selector of one filter, as the kernel lays it out. Text is NUL-padded and may fill its field.
struct dvs_port_ {
  char identifier[64];    //  +0  switch id, vNIC id, filter name or vif uuid, by type
  char agent[32];         // +64  agent name, empty for a vif
  std::uint8_t index[3];  // +96  port or vNIC index, lowest byte first
  std::uint8_t type;      // +99  low nibble: selector type; the high nibble is kept as it stands
};
static_assert(sizeof(dvs_port_) == 100 && alignof(dvs_port_) == 1);
static_assert(offsetof(dvs_port_, agent) == 64 && offsetof(dvs_port_, index) == 96 &&
              offsetof(dvs_port_, type) == 99);

/// Values of the low nibble of `dvs_port_::type`.
enum FWSelectorType : std::uint8_t {
  FW_SELECTOR_NONE = 0,
  FW_SELECTOR_VNIC = 1,
  FW_SELECTOR_DVSPORT = 2,
  FW_SELECTOR_FILTER = 7,
  FW_SELECTOR_VIF = 8,
};

inline std::uint8_t selectorType(const dvs_port_& port) { return port.type & 0x0f; }

/// Sets the low nibble and keeps the high one.
inline void setSelectorType(dvs_port_& port, std::uint8_t type) {
  port.type = static_cast<std::uint8_t>((port.type & 0xf0) | (type & 0x0f));
}

inline std::uint32_t selectorIndex(const dvs_port_& port) {
  return static_cast<std::uint32_t>(port.index[0]) |
         (static_cast<std::uint32_t>(port.index[1]) << 8) |
         (static_cast<std::uint32_t>(port.index[2]) << 16);
}

/// Frame of a direct request to the firewall device, also the frame that carries a message
/// (request 15). Integers in host order.
struct FWIoctlFrame {
  host32 command;     //  +0  the ioctl request number
  host32 status;      //  +4  the kernel's result, 0 is success
  host32 bodyLength;  //  +8  bytes of the body
  host64 body;        // +12  address of the body
};
static_assert(sizeof(FWIoctlFrame) == 20 && alignof(FWIoctlFrame) == 1);
static_assert(offsetof(FWIoctlFrame, status) == 4 && offsetof(FWIoctlFrame, bodyLength) == 8 &&
              offsetof(FWIoctlFrame, body) == 12);

/// Frame of a direct request to the service insertion device. Integers in host order.
struct SIIoctlFrame {
  host32 command;            //  +0  the ioctl request number
  std::uint8_t reserved[4];  //  +4  zero
  host32 inputLength;        //  +8  bytes of the input
  host32 outputLength;       // +12  bytes of the output
  host64 input;              // +16  address of the input, 0 when there is none
  host64 output;             // +24  address of the output, 0 when there is none
};
static_assert(sizeof(SIIoctlFrame) == 32 && alignof(SIIoctlFrame) == 1);
static_assert(offsetof(SIIoctlFrame, inputLength) == 8 &&
              offsetof(SIIoctlFrame, outputLength) == 12 && offsetof(SIIoctlFrame, input) == 16 &&
              offsetof(SIIoctlFrame, output) == 24);

/// Name of an address set or container: NUL-terminated, at most 37 characters.
struct FWAddrSetID_t {
  char text[38];
};
static_assert(sizeof(FWAddrSetID_t) == 38 && alignof(FWAddrSetID_t) == 1);

/// Name of a rule set: NUL-terminated, at most 63 characters.
struct FWRuleSetID_t {
  char text[64];
};
static_assert(sizeof(FWRuleSetID_t) == 64 && alignof(FWRuleSetID_t) == 1);

/// Kind of an address set. 0 as a filter means every kind.
enum FWAddrSetType_t : std::uint32_t {
  FW_ADDRSET_ANY = 0,
  FW_ADDRSET_IP = 1,
  FW_ADDRSET_MAC = 2,
  FW_ADDRSET_ATTRIBUTE = 4,
  FW_ADDRSET_SID = 5,
};

enum FWRuleDirection_t : std::uint32_t {
  FW_DIRECTION_INOUT = 0,
  FW_DIRECTION_IN = 1,
  FW_DIRECTION_OUT = 2,
};

enum FWRuleAF_t : std::uint32_t {
  FW_AF_NONE = 0,
  FW_AF_INET = 1,
  FW_AF_INET6 = 2,
};

/// What a filter does with traffic while it cannot enforce rules.
enum FWFailPolicy_t : std::uint32_t {
  FW_FAIL_OPEN = 0,   // the traffic passes
  FW_FAIL_CLOSE = 1,  // it is dropped
};

/// Kind of an IO channel. Also a value of the configuration language's channel statements.
enum FWIOType_t : std::uint32_t {
  FW_IO_IOCTL = 1,    // the firewall's control device
  FW_IO_SOCKET = 2,   // a TCP socket
  FW_IO_RIBS = 3,     // known by name only: no channel of this kind can be made
  FW_IO_FILE = 4,     // a file that receives the messages
  FW_IO_MEMORY = 5,   // memory of the caller that receives the last message
  FW_IO_GENERIC = 6,  // functions of the caller
};

/// The functions that a generic IO channel calls. Results are statuses, 0 for success.
struct FWLibGenericIO_ {
  /// Called once when the channel is made; what it stores in `context` comes back in the others.
  FWStatus_t (*init)(void* initArgument, void** context);

  /// Called once when the channel is deleted.
  void (*exit)(void* context);

  /// Called for each message. A reply is written over the message in place. `callerContext` is the
  /// context of the `FW_` call, or the handle's own.
  FWStatus_t (*request)(void* context, void* message, unsigned int size, void* callerContext);

  /// Part of the table for the sake of its layout; never called.
  void (*reserved)();
};

/// Kind of a container. Only the attribute profile has behaviour of its own.
enum FWContainerType : std::uint32_t {
  FW_CONTAINER_ADDRSET = 1,
  FW_CONTAINER_ATTR_PROFILE = 2,
};

/// Opaque library handle; it is the address of a `CTarnFWLibHandle`.
struct fwlibhandle_;

/// Opaque handle of loaded configuration: its commands, a `CTarnFWCmdList`.
struct fwconfigfile_;

/// A registered logger gets the priority less 6 plus its base, the format and the arguments.
using FWLoggerFunction_t = void (*)(int priority, const char* format, va_list arguments);

/// The front end's printer: `context` is what was registered with it. Returns what the formatting
/// returns.
typedef int (*FWPrettyPrinting_t)(void* context, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

}  // namespace TarnFirewall
