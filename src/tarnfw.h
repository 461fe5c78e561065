#pragma once

/// The flat functions of the library: the only way in for the front end and for other programs of
/// the host. No exception and no class crosses this boundary.
///
/// Nearly every function begins with a library handle, the selector of a filter (or null) and a
/// context that is passed on to the IO channel (null means the handle's own). The result is a
/// status, 0 for success. The caller owns all result memory unless a function says otherwise.
///
/// This header, TarnFWTypes.h and TarnFWWire.h are what is installed. What stands between the two
/// visibility lines is what the shared library exports.

#include "TarnFWTypes.h"

using TarnFirewall::dvs_port_;
using TarnFirewall::FWAddrSetID_t;
using TarnFirewall::FWAddrSetType_t;
using TarnFirewall::FWIoctlFrame;
using TarnFirewall::FWIOType_t;
using TarnFirewall::FWLibGenericIO_;
using TarnFirewall::fwlibhandle_;
using TarnFirewall::FWLoggerFunction_t;
using TarnFirewall::FWPrettyPrinting_t;
using TarnFirewall::FWRuleAF_t;
using TarnFirewall::FWRuleDirection_t;
using TarnFirewall::FWRuleSetID_t;
using TarnFirewall::FWStatus_t;

#pragma GCC visibility push(default)
extern "C" {

// --- Status texts

/// Text of a status. Above 70 the text stands in one static buffer that the next such call
/// overwrites; not for two threads at once.
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
///                 behind it optionally "FWIOGenericIOContext" a `void**` for the context
///
/// `version` is not looked at; `reserved` must not be null and is never written. 3 for a null
/// argument, 10 when type, count or keys do not fit, otherwise the status of what failed; `*handle`
/// is null then. The caller ends the handle with `FW_Exit`.
FWStatus_t FW_Initialize(unsigned int version, void* reserved, FWIOType_t type, unsigned int count,
                         const char** items, fwlibhandle_** handle);

/// The process-wide handle on the control device, made on first use; it lives until the process
/// exits. Null on an internal failure. Without the device the process ends here with status 255.
fwlibhandle_* FW_GetDefaultLibHandle();

/// Ends a handle. The default handle is left as it is and stays usable. 3 for a null handle.
FWStatus_t FW_Exit(fwlibhandle_* handle);

// --- Direct requests to the control devices

/// One ioctl on the firewall's device, the filter table device or the service insertion device,
/// which is opened on first use. Gives the ioctl's result with its `errno`; -1 when the device
/// could not be opened.
int FW_Ioctl(int request, void* argument);
int WGT_Ioctl(int request, void* argument);
int SI_Ioctl(int request, void* argument);

/// Descriptor of the filter table device, -1 when it could not be opened.
int WGT_GetFd();

// --- Logging, components and printing

/// Registers where diagnostics go instead of the system log. The function gets the system log's
/// priority less 6 plus `base`.
void FW_RegisterLogger(FWLoggerFunction_t function, unsigned int base);
void FW_UnregisterLogger();

/// Logs a caller's line under a component. `level` is 3, 4, 6 or 7. Verbosity is not looked at.
/// 3 for a null format, another level or an unknown component.
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

/// Registers the printer for what commands show; a null function turns their output off.
void FW_SetLibPrettyPrinting(FWPrettyPrinting_t function, void* context);

}  // extern "C"
#pragma GCC visibility pop
