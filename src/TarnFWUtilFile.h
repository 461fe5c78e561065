#pragma once

/// Files that are replaced or written by a function of the caller's, its writer.

#include <cstdio>
#include <ostream>
#include <string>

/// Result of the utilities that touch the host: 1 for success, anything else is a failure.
using UtilStatus_t = int;
inline constexpr UtilStatus_t UTIL_STATUS_FAILED = 0;
inline constexpr UtilStatus_t UTIL_STATUS_OK = 1;

/// Writes the new content of a file to the stream of its temporary file.
using FwFileWriter_t = UtilStatus_t (*)(void* context, std::ostream& stream);

/// Appends what is to be written to a text, which is empty.
using FwTextWriter_t = UtilStatus_t (*)(void* context, std::string& text);

/// Replaces a file. The earlier content goes to `path` with ".old", the new content to `path` with
/// ".tmp" and from there into `path`, which keeps its inode and its mode; the other two have the
/// mode 0600 and stay. A file that is not there yet is made.
///
/// The earlier content is never lost: at any failure it stands in `path` or, whole, in ".old". When
/// ".old" can't be opened there is no backup, and a failure while `path` is written puts the
/// earlier content back as far as the host allows it. Failures are logged. What the writer throws
/// passes through.
UtilStatus_t FwReplaceFile(const char* path, void* context, FwFileWriter_t writer);

/// Writes what the writer has made to a file that is open. Nothing is written when it fails.
UtilStatus_t FwWriteFile(std::FILE* file, void* context, FwTextWriter_t writer);
