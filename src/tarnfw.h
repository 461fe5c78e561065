#pragma once

/// The flat functions of the library: the only way in for the front end and for other programs of
/// the host. No exception and no class crosses this boundary.
///
/// Nearly every function begins with a library handle, the selector of a filter (or null) and a
/// context that is passed on to the IO channel (null means the handle's own). The result is a
/// status, 0 for success; a null handle gives 2. A function that fails changes none of its results,
/// unless it says otherwise. The caller owns all result memory, and what a function is given stays
/// the caller's. The kernel's own statuses come back as they are: `FW_StatusToString` has their
/// texts.
///
/// The header is C++20, for its records of fixed byte order. A C program takes it in a C++ file of
/// its own, as examples/library does. The functions have C linkage, so that a program in another
/// language can also declare those that it calls. The types that they take are
/// brought into the global namespace; constants and helpers stand in `TarnFirewall`.
///
/// Two threads may use one handle, as far as its channel allows it. Where a function is not for
/// that, it says so.
///
/// This header, TarnFWAlgRecords.h, TarnFWConnectionRecord.h, TarnFWFilterRecords.h,
/// TarnFWFlowRecords.h, TarnFWIdentityRecords.h, TarnFWLoadBalancerRecords.h, TarnFWRecords.h,
/// TarnFWRuleRecord.h, TarnFWSettingsRecords.h, TarnFWTypes.h and TarnFWWire.h are what is
/// installed. What stands between the two visibility lines is what the shared library exports.

#if __cplusplus < 202002L
// A file that is not there is the one error after which a compiler stops; after #error it would go
// on and print one for every name that is missing.
#include "tarnfw.h is C++20: compile with -std=c++20; a C program uses it in a C++ file of its own"
#endif

#include <stdio.h>

#include "TarnFWAlgRecords.h"
#include "TarnFWConnectionRecord.h"
#include "TarnFWFilterRecords.h"
#include "TarnFWFlowRecords.h"
#include "TarnFWIdentityRecords.h"
#include "TarnFWLoadBalancerRecords.h"
#include "TarnFWRecords.h"
#include "TarnFWRuleRecord.h"
#include "TarnFWSettingsRecords.h"
#include "TarnFWTypes.h"

using TarnFirewall::dvs_port_;
using TarnFirewall::FWAddress_;
using TarnFirewall::FWAddressStat_;
using TarnFirewall::FWAddressValid_;
using TarnFirewall::FWAddrSetCfg_;
using TarnFirewall::FWAddrSetID_t;
using TarnFirewall::FWAddrSetOperation_t;
using TarnFirewall::FWAddrSetStat_;
using TarnFirewall::FWAddrSetType_t;
using TarnFirewall::FWAlg_;
using TarnFirewall::FWAlgPort_;
using TarnFirewall::fwattr_sid;
using TarnFirewall::FWAttrKeyID;
using TarnFirewall::FWAttrOpType;
using TarnFirewall::fwconfigfile_;
using TarnFirewall::fwconnattr_;
using TarnFirewall::FWConnection_;
using TarnFirewall::FWConnFilter_;
using TarnFirewall::FWContainerType;
using TarnFirewall::FWDlbRule_;
using TarnFirewall::fwdomain2ip_;
using TarnFirewall::FWDPIInfo_;
using TarnFirewall::FWFailPolicy_t;
using TarnFirewall::FWFilterConfiguration_;
using TarnFirewall::FWFloodCfg_;
using TarnFirewall::FWFloodRow_;
using TarnFirewall::FWFloodStat_;
using TarnFirewall::FWFlowRecord_;
using TarnFirewall::FWFqdnEntry_;
using TarnFirewall::FWInstTimeout_;
using TarnFirewall::FWIoctlFrame;
using TarnFirewall::FWIOType_t;
using TarnFirewall::FWLBConfigSize_;
using TarnFirewall::FWLBStat_;
using TarnFirewall::FWLibGenericIO_;
using TarnFirewall::fwlibhandle_;
using TarnFirewall::FWLoggerFunction_t;
using TarnFirewall::FWPrettyPrinting_t;
using TarnFirewall::FWRule_;
using TarnFirewall::FWRuleAF_t;
using TarnFirewall::FWRuleDirection_t;
using TarnFirewall::FWRuleSetID_t;
using TarnFirewall::FWRuleStat_;
using TarnFirewall::FWStatus_t;
using TarnFirewall::FWUuidItem_;
using TarnFirewall::SIIoctlFrame;
using TarnFirewall::Uid2SidOp_t;

#pragma GCC visibility push(default)
extern "C" {

// --- Status texts

/// Text of a status. Above 70 the text stands in a buffer of the calling thread, which its next
/// such call overwrites.
const char* FW_StatusToString(unsigned int status);

// --- Start-up

/// Version of this interface, as callers pass it to `FW_Initialize`.
#define FW_INTERFACE_VERSION 65536u

/// Makes a library handle on the IO channel that `items` describes: key, value, key, value, with
/// `count` entries in all, in this order:
///
///     1 device    nothing, or "FWIODeviceName" (has no effect: the host chooses the device)
///     2 socket    "FWIOAddress", "FWIOPort", both text
///     4 file      "FWIOFileName"
///     5 memory    "FWIOMemory" the address, "FWIOLength" a pointer to an unsigned int
///     6 generic   "FWIOGenericIO" a `FWLibGenericIO_*`, optionally "FWIOGenericIOInitArg", and
///                 after it optionally "FWIOGenericIOContext" a `void**` for the context
///
/// `version` is not looked at; `reserved` must not be null and is never written. 3 for a null
/// argument, 10 when type, count or keys do not fit, otherwise the status of what failed; `*handle`
/// is null then. The caller ends the handle with `FW_Exit`.
FWStatus_t FW_Initialize(unsigned int version, void* reserved, FWIOType_t type, unsigned int count,
                         const char** items, fwlibhandle_** handle);

/// The process-wide handle on the control device, made on first use; it lives until the process
/// exits. Null on an internal failure. Without the device the process ends here with status 255.
fwlibhandle_* FW_GetDefaultLibHandle();

/// Ends a handle. The default handle is left as it is and stays usable. It is made first when there
/// is none, so that without the device the process ends here, as there. 3 for a null handle.
FWStatus_t FW_Exit(fwlibhandle_* handle);

// --- Configuration text

/// Loads configuration text: parses it, makes the channel that it names, if any, and gives a handle
/// to its commands. Nothing is sent. `*channel` is replaced when the text names a channel; the
/// new one is the caller's, and so is the former one, which stays open. 3 for a null argument, 8
/// without memory, 16 or the status of what is wrong for a text that does not parse. A text may
/// fail with status 0: test the handle too, which is then as it was before.
///
/// A stream whose reading fails, such as that of a folder, and memory that the scanner cannot get
/// end the process with status 2.
///
/// One load at a time in a process. A `config default agent` statement holds for all later loads,
/// even when this one fails.
FWStatus_t FW_LoadConfigString(const char* text, fwlibhandle_** channel, fwconfigfile_** handle);

/// The same from an open stream, which stays the caller's. `fileName` stands in error lines.
/// `*handle` is null unless the load succeeds.
FWStatus_t FW_LoadConfigFile2(FILE* file, const char* fileName, fwlibhandle_** channel,
                              fwconfigfile_** handle);

/// The same from a file; 12 when it can't be opened.
FWStatus_t FW_LoadConfigFile(const char* path, fwlibhandle_** channel, fwconfigfile_** handle);

/// Sends the commands in their order, up to the first that fails, whose status it gives; `port`
/// replaces their selectors unless it is null. Without a `port`, a command that fails with 21
/// ("switch port not found") is passed over, and the next is sent; the last one's 21 is given. What
/// was carried out stays so. 3 for a null handle, of either kind.
///
/// May be repeated: one configuration can be sent to many filters, each with its own `port`, without
/// being parsed again. Further evaluations build their messages in the memory of the first, which
/// `FW_FreeConfigFile` frees.
FWStatus_t FW_EvaluateConfigFile(fwlibhandle_* handle, fwconfigfile_* config, dvs_port_* port,
                                 void* context);

/// Ends the handle. 3 for a null handle.
FWStatus_t FW_FreeConfigFile(fwconfigfile_* config);

// --- Direct requests to the control devices

/// One ioctl on the firewall's device, the filter table device or the service insertion device,
/// which is opened on first use. Gives the ioctl's result with its `errno`; -1 when the device
/// could not be opened.
int FW_Ioctl(int request, void* argument);
int WGT_Ioctl(int request, void* argument);
int SI_Ioctl(int request, void* argument);

/// Descriptor of the filter table device, -1 when it could not be opened.
int WGT_GetFd();

/// Makes a filter on a virtual NIC, or removes it for an `add` of 0, by a request of its own. 3 for
/// a null configuration or NIC, 19 for a kernel that does not have the request.
FWStatus_t FW_AddRemoveFilter(const FWFilterConfiguration_* configuration, unsigned int worldId,
                              unsigned int filterIndex, const char* vnic, unsigned int add);

// --- Logging, components and printing
//
// Any thread may call these functions at any time, also while others use the library. A line that
// another thread is logging may still reach the former logger after the call that replaced it has
// returned; the printer is not replaced while a command prints.

/// Registers where diagnostics go instead of the system log. The function gets the system log's
/// priority less 6 plus `base`.
void FW_RegisterLogger(FWLoggerFunction_t function, unsigned int base);
void FW_UnregisterLogger();

/// Logs a caller's line under a component. `level` is 3, 4, 6 or 7. Verbosity is not looked at.
/// 3 for a null format, another level or an unknown component; 8 when a format of more than 900
/// characters finds no memory.
FWStatus_t FW_Log(int level, unsigned int component, const char* format, ...)
    __attribute__((format(printf, 3, 4)));

/// Name of a component: "all" for 255, "unknown" for a number not in use.
const char* FW_ComponentToString(unsigned int component);

/// Number of a component by name, ignoring case; 64 when there is none.
unsigned int FW_StringToComponent(const char* name);
unsigned int FW_GetComponentCount();

/// Adds a component of at most 15 characters. 3 for a null argument or a longer name, 56 when all
/// 64 rows are taken.
FWStatus_t FW_RegisterComponent(const char* name, unsigned int* component);

/// Always 7: rows are never given back.
FWStatus_t FW_UnregisterComponent(unsigned int component);

/// 55 for an unknown component, 3 for a null result.
FWStatus_t FW_GetLibVerboseLevel(unsigned int component, unsigned int* level);

/// Sets the verbosity of one component, or of all with 255. An unknown one changes nothing.
void FW_SetLibVerboseLevel(unsigned int component, unsigned int level);

/// Registers the printer for what commands show, beside what they give the caller. Nothing is shown
/// without one, or when the function is null. A command holds a lock while it prints: the printer
/// calls no function of the library.
void FW_SetLibPrettyPrinting(FWPrettyPrinting_t function, void* context);

// --- Rule sets
//
// A kind of rules is 0 for filter rules, 1 for snat, 2 for dnat. Names that come back are closed
// with a NUL. 3 for a null result or name. Indexes begin with 0.
//
// Whatever reads a list gets up to `max` entries into memory for `max` of them, and says through
// `returned` how many came. A `returned` above `max` is the kernel's count: it had more than was
// asked for, and `max` entries were written.

FWStatus_t FW_GetRuleSetCount(fwlibhandle_* handle, const dvs_port_* port, void* context,
                              unsigned int* count);

/// Names of rule sets from an index on.
FWStatus_t FW_GetRuleSetList(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             unsigned int max, unsigned int from, FWRuleSetID_t* names,
                             unsigned int* returned);

FWStatus_t FW_GetRootRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             FWRuleSetID_t* layer3, FWRuleSetID_t* layer2);
FWStatus_t FW_ClearRootRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context);

FWStatus_t FW_DestroyRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             const FWRuleSetID_t* id);
FWStatus_t FW_DestroyAllRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context);

/// Removes the rules and keeps the set.
FWStatus_t FW_ClearRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                           const FWRuleSetID_t* id);

FWStatus_t FW_SetRuleSetJump(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             const FWRuleSetID_t* id, const FWRuleSetID_t* target);
FWStatus_t FW_GetRuleSetJump(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             const FWRuleSetID_t* id, FWRuleSetID_t* target);
FWStatus_t FW_ClearRuleSetJump(fwlibhandle_* handle, const dvs_port_* port, void* context,
                               const FWRuleSetID_t* id);

FWStatus_t FW_GetRuleCountOfRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                    const FWRuleSetID_t* id, unsigned int kind,
                                    unsigned int* count);

/// The realization time counts seconds since the host's boot.
FWStatus_t FW_GetRuleSetInfo(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             const FWRuleSetID_t* id, unsigned int* count,
                             std::uint64_t* realizationTime, std::uint64_t* generation);

/// Creates a rule set of `count` rules, or replaces its rules. The jump target, which may be null,
/// is not sent: `FW_SetRuleSetJump` sets it. 45 for a record that makes no rule, or the status of
/// what is wrong in one; nothing is sent then.
FWStatus_t FW_CreateRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                            const FWRuleSetID_t* id, const FWRuleSetID_t* jump,
                            const FWRule_* rules, unsigned int count);

/// Sends all IP traffic of the filter to one rule set and all Ethernet traffic to another; one of
/// the names may be empty.
FWStatus_t FW_SetRootRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             const FWRuleSetID_t* layer3, const FWRuleSetID_t* layer2);

/// Rules: those of the `max` rule ids at `ids`, or from an index on when that is null.
FWStatus_t FW_GetRuleOfRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                               unsigned int kind, unsigned int max, unsigned int from,
                               const FWRuleSetID_t* id, const unsigned int* ids, FWRule_* rules,
                               unsigned int* returned);

/// Statistics of rules: of the `max` rule ids at `ids`, or from an index on when that is null.
FWStatus_t FW_GetStatOfRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                               unsigned int kind, unsigned int max, unsigned int from,
                               const FWRuleSetID_t* id, const unsigned int* ids, FWRuleStat_* stats,
                               unsigned int* returned);

/// The same for the state of load-balancing rules.
FWStatus_t FW_GetDlbOfRuleSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                              unsigned int kind, unsigned int max, unsigned int from,
                              const FWRuleSetID_t* id, const unsigned int* ids, FWDlbRule_* rules,
                              unsigned int* returned);

// --- Address sets and containers
//
// Type 0 stands for every type of set. Names that come back are closed with a NUL. 3 for a null
// result or name. Lists are read as those of rule sets.

/// Creates a set of `count` addresses, or replaces its members. The type is not sent, since
/// each record has its own. 33 for a record that makes no address; nothing is sent then.
FWStatus_t FW_CreateAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                            const FWAddrSetID_t* id, FWAddrSetType_t type,
                            const FWAddress_* addresses, unsigned int count);

FWStatus_t FW_DestroyAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             const FWAddrSetID_t* id);
FWStatus_t FW_DestroyAllAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context);

/// Removes the members and keeps the set.
FWStatus_t FW_ClearAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                           const FWAddrSetID_t* id);

FWStatus_t FW_GetAddrSetCount(fwlibhandle_* handle, const dvs_port_* port, void* context,
                              FWAddrSetType_t type, unsigned int* count);
FWStatus_t FW_GetAddrSetList(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             FWAddrSetType_t type, unsigned int max, unsigned int from,
                             FWAddrSetID_t* names, unsigned int* returned);
FWStatus_t FW_GetAddrSetStatList(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                 FWAddrSetType_t type, unsigned int max, unsigned int from,
                                 FWAddrSetStat_* stats, unsigned int* returned);

/// Type 1 is an address set, 2 a container. `size` is that of the members on the wire, in bytes.
FWStatus_t FW_GetAddrSetTypeAndSize(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                    const FWAddrSetID_t* id, unsigned int* type,
                                    unsigned int* count, unsigned int* size);
/// As `FW_GetRuleSetInfo`.
FWStatus_t FW_GetAddrSetInfo(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             const FWAddrSetID_t* id, unsigned int* count,
                             std::uint64_t* realizationTime, std::uint64_t* generation);

FWStatus_t FW_GetAddressOfAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                  const FWAddrSetID_t* id, unsigned int max, unsigned int from,
                                  FWAddress_* addresses, unsigned int* returned);
FWStatus_t FW_GetAddrValidOfAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                    const FWAddrSetID_t* id, unsigned int max, unsigned int from,
                                    FWAddressValid_* records, unsigned int* returned);

/// Statistics of the addresses, in their order. `clear` resets them after they were read.
FWStatus_t FW_GetAddressStatOfAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                      const FWAddrSetID_t* id, unsigned int max, unsigned int from,
                                      unsigned int clear, FWAddressStat_* stats,
                                      unsigned int* returned);

/// Texts of a container's elements, each from `malloc` and freed by the caller. `elements` holds
/// `count`; this and `bufferSize` are the count and the size that `FW_GetAddrSetTypeAndSize` gives.
/// 6 when the reply cannot be decoded or has more elements; there is nothing to free then.
FWStatus_t FW_GetElementsOfContainer(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                     const char* name, FWContainerType type, unsigned int count,
                                     unsigned int bufferSize, char** elements,
                                     unsigned int* returned);

/// Whether a filter shares its address sets.
FWStatus_t FW_ConfigSharedAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                  unsigned int enable);
FWStatus_t FW_GetSharedAddrSet(fwlibhandle_* handle, const dvs_port_* port, void* context,
                               unsigned int* enabled);

/// Changes or shows an address set's configuration. The two values come back in the record: for the
/// validity of an address what it was and what it is, otherwise whether the filter and the set keep
/// statistics (0 unset, 1 enabled, else disabled).
FWStatus_t FW_SetAddrSetCfg(fwlibhandle_* handle, const dvs_port_* port, void* context,
                            FWAddrSetCfg_* configuration);

// --- Connections of a filter
//
// 3 for a null result. A connection stands in a `FWConnection_`; the addresses and ports in it are
// in network order.

/// How many there are; it is printed too. `filter` may be null and has no effect.
FWStatus_t FW_GetConnectionCount(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                 const FWConnFilter_* filter, unsigned int* count);

/// Up to `count` connections with flow ids from `cursor` on, 0 for the first; they are printed too.
/// `records` has room for as many `FWFlowRecord_`, 251 bytes each and without attributes. The next
/// call's cursor is the flow id of the last one plus 1. `*got` is read as the `returned` of rule
/// sets. 3 for a `count` of 0 or a null argument, 17 for a `count` whose size needs more than 32
/// bits; nothing is sent then.
FWStatus_t FW_GetConnectionStat(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                unsigned int count, unsigned long cursor, void* records,
                                unsigned int* got);

/// Sets the connections that a block chooses, those of a list, all of them; how is the kernel's
/// matter. `count` and `result` are what it answers. Connections that stand twice in the list are
/// sent once. 3 for a null argument or an empty list.
FWStatus_t FW_SetConnectionByFilter(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                    const FWConnFilter_* filter, unsigned int* count);
FWStatus_t FW_SetConnectionByList(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                  unsigned int count, const FWConnection_* list,
                                  unsigned int* result);
FWStatus_t FW_SetAllConnection(fwlibhandle_* handle, const dvs_port_* port, void* context,
                               unsigned int* count);

/// Ends all connections. How many there were is printed too.
FWStatus_t FW_ClearAllConnection(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                 unsigned int* count);

// --- Settings of a filter

/// What the filter does with traffic while it cannot enforce rules. 7 for a policy above 1, which
/// is not sent; a kernel may answer with one that has no name.
FWStatus_t FW_SetFailPolicy(fwlibhandle_* handle, const dvs_port_* port, void* context,
                            FWFailPolicy_t policy);
FWStatus_t FW_GetFailPolicy(fwlibhandle_* handle, const dvs_port_* port, void* context,
                            FWFailPolicy_t* policy);

/// How much the kernel's firewall logs: 1 the data path, 2 the control path; level 0 to 15. 7 for
/// another component or level, which is not sent.
FWStatus_t FW_EnableVerboseLog(fwlibhandle_* handle, const dvs_port_* port, void* context,
                               unsigned int component, unsigned int level);

/// The same for one component, 0 to 20, or for all with 255.
FWStatus_t FW_DebugComponent(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             unsigned int component, unsigned int level);

/// Prints the level of every component.
FWStatus_t FW_DebugStatus(fwlibhandle_* handle, const dvs_port_* port, void* context);

/// The timeouts that are marked in the record, in the order of their numbers. What is read is
/// printed and comes back in the record, with the marks that the kernel set. 3 for a null record.
FWStatus_t FW_SetTimeout(fwlibhandle_* handle, const dvs_port_* port, void* context,
                         const FWInstTimeout_* timeouts);
FWStatus_t FW_GetTimeout(fwlibhandle_* handle, const dvs_port_* port, void* context,
                         FWInstTimeout_* timeouts);

/// Protection against floods. A state is asked for with a cleared record, in which `zeroCounters`
/// 1 zeroes the counters and `rowSize` 24 with `rowCount` 512 asks for the rows; `rowCount` never
/// comes back above 512. 3 for a null record.
FWStatus_t FW_SetFloodCfg(fwlibhandle_* handle, const dvs_port_* port, void* context,
                          const FWFloodCfg_* configuration);
FWStatus_t FW_GetFloodStat(fwlibhandle_* handle, const dvs_port_* port, void* context,
                           FWFloodStat_* stat);

/// The version in which a filter's state is exported. What is read is printed too. 3 for a null
/// result.
FWStatus_t FW_SetSkifferExportver(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                  unsigned int version);
FWStatus_t FW_GetSkifferExportver(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                  unsigned int* version);

/// Whether ICMP errors are dropped.
FWStatus_t FW_ConfigICMPErrPktDrop(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                   int enable);

/// How long a filter keeps what it has learned from answers of name servers: `mode` 1 for ever, 2
/// as the answers say, 0 for the seconds. 7 for a mode above 255, which is not sent. What is read
/// is printed.
FWStatus_t FW_SetDnsConfigProfile(fwlibhandle_* handle, const dvs_port_* port, unsigned int mode,
                                  unsigned int timeToLive);
FWStatus_t FW_GetDnsConfigProfile(fwlibhandle_* handle, const dvs_port_* port);

/// Whether a filter copies packets for the inspection of layer 7.
FWStatus_t FW_SetL7CopyMode(fwlibhandle_* handle, const dvs_port_* port, unsigned int mode);

// --- Spoof guard of a filter
//
// A MAC address is six bytes, first octet first.

/// Binds a MAC address to `count` addresses: IP addresses, or one reference to an address set. 3
/// for a null argument, 33 for a record that makes no address; nothing is sent then.
FWStatus_t FW_CreateSpoofGuard(fwlibhandle_* handle, const dvs_port_* port, void* context,
                               const FWAddress_* addresses, unsigned int count,
                               const std::uint8_t* mac);

/// `mac` may be null: then it is the filter's own.
FWStatus_t FW_DeleteSpoofGuard(fwlibhandle_* handle, const dvs_port_* port, void* context,
                               const std::uint8_t* mac);

/// Whether the guard is on (1) or off (0), the MAC address and the addresses; they are printed too.
/// `*count` holds the room at `addresses`, which is filled as far as it goes, and receives how many
/// there are: at most 1024, and more than the room where that was less. 3 for a null argument;
/// `addresses` may be null when the room is 0.
FWStatus_t FW_CheckSpoofGuard(fwlibhandle_* handle, const dvs_port_* port, void* context,
                              unsigned int* enabled, std::uint8_t* mac, unsigned int* count,
                              FWAddress_* addresses);

/// Prints what the guard has seen.
FWStatus_t FW_GetSpoofGuardStat(fwlibhandle_* handle, const dvs_port_* port, void* context);

// --- Interface of a filter

/// Prints the counters that are not 0; zeroes all.
FWStatus_t FW_GetKifStat(fwlibhandle_* handle, const dvs_port_* port, void* context);
FWStatus_t FW_ClearKifStat(fwlibhandle_* handle, const dvs_port_* port, void* context);

/// Whether the interface takes the fast path, 0 or 1: mode 0 sets `*value`, mode 1 reads it. It
/// receives the kernel's value in both. 3 for a null value.
FWStatus_t FW_FpFlag(fwlibhandle_* handle, const dvs_port_* port, void* context,
                     unsigned int* value, unsigned int mode);

/// Prints the flags.
FWStatus_t FW_GetKifFlags(fwlibhandle_* handle, const dvs_port_* port, void* context);

/// Sets a flag. Of the name 39 characters are sent, of the value eight bits. 3 for a null name.
FWStatus_t FW_SetKifFlags(fwlibhandle_* handle, const dvs_port_* port, void* context,
                          const char* name, unsigned int value);

// --- Fully qualified names of a filter

/// Forgets all addresses of names. `*result` is the kernel's return code. 3 for a null result.
FWStatus_t FW_DeleteFqdnTree(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             int* result);

/// How many addresses of names there are, and how many identifiers in all of them.
FWStatus_t FW_GetFqdnCount(fwlibhandle_* handle, const dvs_port_* port, void* context,
                           unsigned int* entries, unsigned int* uuids);

/// The entry after the one of this address and family. A cleared address of family 0 asks for the
/// first; what comes next is asked for with the address and the family of the entry before, by the
/// first function for family 0 and 2 and by the second for every other. 57 for a family of the
/// other one.
FWStatus_t FW_GetFqdnEntriesV4(fwlibhandle_* handle, const dvs_port_* port, void* context,
                               FWAddress_ before, std::uint8_t family, FWFqdnEntry_* entry);
FWStatus_t FW_GetFqdnEntriesV6(fwlibhandle_* handle, const dvs_port_* port, void* context,
                               FWAddress_ before, std::uint8_t family, FWFqdnEntry_* entry);

/// The identifiers of an entry, into memory for `max` of them, each closed with a NUL. `*returned`
/// is how many came. 3 for a null argument and a `max` of 0, 17 for more than a message holds.
FWStatus_t FW_GetUuid(fwlibhandle_* handle, const dvs_port_* port, void* context,
                      const FWAddress_* address, unsigned int max, FWUuidItem_* items,
                      unsigned int* returned);

// --- Attributes of connections
//
// A connection is named by its description, or by its id when that is null. The id stands in the
// request as it is given.

/// How many attributes a connection has, and their size in a message.
FWStatus_t FW_GetConnAttrInfo(fwlibhandle_* handle, const dvs_port_* port, void* context,
                              const FWConnection_* connection, std::uint64_t id,
                              unsigned int* count, unsigned int* size);

/// Makes a command that attaches attributes to a connection. Nothing is sent. The handle is the
/// caller's until `FW_ReleaseConnectionAttr`; one thread at a time uses it. Whatever takes such a
/// handle gives 3 for one that is null, foreign or released.
FWStatus_t FW_CreateConnectionAttr(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                   const FWConnection_* connection, std::uint64_t id,
                                   FWAttrOpType operation, fwconnattr_** command);

/// Add an attribute; one that the command has already is dropped. 66 for a number that is not a
/// key, 67 for a value that the key does not take. An identifier is 16 bytes; its text may be null.
FWStatus_t FW_AddAttrSTR(fwconnattr_* command, FWAttrKeyID key, const char* value);
FWStatus_t FW_AddAttrINT(fwconnattr_* command, FWAttrKeyID key, std::int64_t value);
FWStatus_t FW_AddAttrUUID(fwconnattr_* command, FWAttrKeyID key, const std::uint8_t* uuid,
                          const char* text);

/// Add security identifiers: of groups, one or several, and of the user. 67 for one without a text;
/// none is added then.
FWStatus_t FW_AddAttrSID(fwconnattr_* command, const fwattr_sid* sid);
FWStatus_t FW_AddAttrMultiSID(fwconnattr_* command, const fwattr_sid* sids, unsigned int count);
FWStatus_t FW_AddAttrUserSID(fwconnattr_* command, const fwattr_sid* sid);

FWStatus_t FW_AddAttrProcessHash(fwconnattr_* command, std::uint64_t hash);

/// Sends the command; it may be sent again. `port` replaces its selector unless it is null. 70 when
/// the kernel knows no security identifiers of the user, 19 for another failure that it reports.
FWStatus_t FW_SetConnectionAttr(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                fwconnattr_* command);
FWStatus_t FW_ReleaseConnectionAttr(fwconnattr_* command);

// --- Addresses of a domain

/// Makes a command that binds a domain to its addresses, in the same steps. The identifier is 16
/// bytes; the name may be null.
FWStatus_t FW_CreateDomain2IPHandle(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                    const std::uint8_t* uuid, const char* name,
                                    fwdomain2ip_** domain);

/// Adds an IP address. The request has no field for its time to live, which is ignored. 33 for
/// another address.
FWStatus_t FW_AddIPAddress(fwdomain2ip_* domain, const FWAddress_* address,
                           unsigned int timeToLive);
FWStatus_t FW_SetDomain2IP(fwlibhandle_* handle, const dvs_port_* port, void* context,
                           fwdomain2ip_* domain);
FWStatus_t FW_ReleaseDomain2IPHandle(fwdomain2ip_* domain);

// --- Users of a filter

/// Add security identifiers to a user, or delete them. 3 for a null user, and for null identifiers
/// unless `count` is 0.
FWStatus_t FW_AddAttrUid2MultiSid(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                  const fwattr_sid* uid, const fwattr_sid* sids,
                                  unsigned int count);
FWStatus_t FW_DelAttrUid2Sid(fwlibhandle_* handle, const dvs_port_* port, void* context,
                             const fwattr_sid* uid, const fwattr_sid* sids, unsigned int count);

/// How many users have security identifiers and how large their listing is; the listing itself,
/// which is printed only.
FWStatus_t FW_GetUid2SidMapSize(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                unsigned int* count, unsigned int* size);
FWStatus_t FW_GetUid2SidMap(fwlibhandle_* handle, const dvs_port_* port, void* context,
                            unsigned int count, unsigned int size);

/// A security identifier from its text, "S-1-...", and back. 67 for what is none, 9 when `size` is
/// too small; 185 bytes hold every text.
FWStatus_t FW_SIDStringToBinary(const char* text, fwattr_sid* sid);
FWStatus_t FW_BinaryToSIDString(const fwattr_sid* sid, char* text, unsigned int size);

// --- State of deep inspection

/// The states of `count` connections, up to 100, by their ids, into memory for `max` records; those
/// that were not answered are cleared. 3 for a null argument and for another `count`.
FWStatus_t FW_GetConnectionDPIInfo(fwlibhandle_* handle, const dvs_port_* port, void* context,
                                   const std::uint64_t* ids, unsigned int count,
                                   FWDPIInfo_* records, unsigned int max);

/// Name of an inspection state, "UNKNOWN" for one without a name.
const char* FW_DPIStateToString(unsigned int state);

// --- Load balancer of a filter

// Both configuration and statistics are read in two steps: the kernel fills the record with how
// much there is, then the same record asks for it, and the answer is printed as one JSON object. A
// record of more than 1000 services or pools, or of more than 32 bits of bytes, gives 17.

/// Which services there are, of those that the record asks for, and how much they hold.
FWStatus_t FW_GetLBConfigSize(fwlibhandle_* handle, const dvs_port_* port, void* context,
                              FWLBConfigSize_* sizes);
FWStatus_t FW_GetLBConfig(fwlibhandle_* handle, const dvs_port_* port, void* context,
                          const FWLBConfigSize_* sizes);

/// How many virtual servers, pools and members have statistics. The kernel's answer replaces the
/// record in all three functions; its flags say whether the service, the virtual server or the pool
/// is there, and nothing is printed if one is not.
FWStatus_t FW_GetLBStatSize(fwlibhandle_* handle, const dvs_port_* port, void* context,
                            FWLBStat_* stat);
FWStatus_t FW_GetLBStat(fwlibhandle_* handle, const dvs_port_* port, void* context,
                        FWLBStat_* stat);

/// Zeroes the statistics of virtual servers or pools. The record's size is 4141.
FWStatus_t FW_ClearLBStat(fwlibhandle_* handle, const dvs_port_* port, void* context,
                          FWLBStat_* stat);

// --- Application-level gateways of a filter

// The bytes of one record and how many there are; then these records, into `size` bytes of the
// caller's, `count` of them at most. They report how many came.
FWStatus_t FW_GetAlgCount(fwlibhandle_* handle, const dvs_port_* port, void* context,
                          unsigned int* size, unsigned int* count);
FWStatus_t FW_GetAlgs(fwlibhandle_* handle, const dvs_port_* port, void* context, unsigned int size,
                      unsigned int count, FWAlg_* records, unsigned int* returned);
FWStatus_t FW_GetAlgPortCount(fwlibhandle_* handle, const dvs_port_* port, void* context,
                              unsigned int* size, unsigned int* count);
FWStatus_t FW_GetAlgPorts(fwlibhandle_* handle, const dvs_port_* port, void* context,
                          unsigned int size, unsigned int count, FWAlgPort_* records,
                          unsigned int* returned);

// --- Records as text

/// Texts of `count` records one after the other with nothing between them, closed with a NUL. 3
/// for a null argument or a `count` or `size` of 0, 9 when `size` is too small, 45 for a record
/// that makes no rule, 33 for one that makes no address, or the status of what is wrong in it. The
/// texts before that one stand in `text` then. `pretty` asks for the labelled form.
FWStatus_t FW_GetRuleString(const FWRule_* rules, unsigned int count, char* text, unsigned int size,
                            unsigned int pretty);
FWStatus_t FW_GetAddressString(const FWAddress_* addresses, unsigned int count, char* text,
                               unsigned int size);

}  // extern "C"
#pragma GCC visibility pop
