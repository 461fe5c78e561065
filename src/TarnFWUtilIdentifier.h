#pragma once

/// Text forms of identifiers. An identifier is 16 bytes in the order in which they are written; no
/// group is swapped.

#include <cstddef>
#include <cstdint>
#include <string>

#include "TarnFWTypes.h"

/// Bytes of an identifier.
inline constexpr std::size_t kUuidSize = 16;

/// gfy form, as the host's VM configuration files have it:
/// "00 01 02 03 04 05 06 07-08 09 0a 0b 0c 0d 0e 0f". False when the text is longer than `size`; a
/// text of exactly `size` characters is cut by one and still a success, which callers rely on.
bool uuid2gfystr(const std::uint8_t* uuid, char* buffer, std::size_t size);

/// Normal form, "00010203-0405-0607-0809-0a0b0c0d0e0f". `size` as above.
bool uuid2normalstr(const std::uint8_t* uuid, char* buffer, std::size_t size);

/// vnic form: the normal form, a dot and the index in three digits. `size` as above.
bool uuid2vnicstr(const std::uint8_t* uuid, int index, char* buffer, std::size_t size);

/// All 16 fields must be there; what follows the last is not looked at.
bool gfystr2uuid(std::uint8_t* uuid, const char* text);
bool normalstr2uuid(std::uint8_t* uuid, const char* text);

/// The vnic form, the gfy form with ":" and the index, or the gfy form with "." and the index.
bool vnicstr2uuid(std::uint8_t* uuid, int* index, const char* text);

bool gfystr2vnicstr(const char* gfyText, int index, char* buffer, std::size_t size);

/// An identifier in vnic form, which sets `index` and `isVnic`, else in gfy or normal form.
bool ParseUUIDString(const char* text, std::uint8_t* uuid, int* index, int* isVnic);

namespace TarnFirewall {

/// "id:index" of a selector; the quotation marks are part of the output. `size` as with
/// `uuid2gfystr`.
bool fw_dvsport2str(const dvs_port_* port, char* buffer, std::size_t size);

/// vnic form of a selector whose name is a gfy form; throws `CUnsupportedException` when it is not.
bool fw_vnic2str(const dvs_port_* port, char* buffer, std::size_t size);

/// The kernel's name of a container, in at most 38 bytes: a name of up to 37 characters as it is, a
/// longer one must be a vnic form, with "ip-" or "mac-" in front of it or not, and an index below
/// 10. The buffer stays as it was when it is not.
bool normalizeContainerName(const std::string& name, char* buffer);

}  // namespace TarnFirewall
