#pragma once

/// Requests on an agent's filter tables. Each gives the result of the device call, 0 or -1 with
/// `errno`.

#include "TableRecords.h"
#include "TarnFWDirectRequest.h"

/// Sends a request with entries, or without any.
int sendEntries(WGTRequest number, const char* agent, TarnFirewall::RequestMemory entries = {});

/// Asks for the size of a table, which is 0 when the kernel does not answer.
int askSize(const FilterTable& table, const char* agent, std::uint32_t* size);

/// Size of a table that was read.
struct TableReply {
  std::uint32_t size;    // as the kernel says it
  std::uint32_t filled;  // no more than the room; the kernel's larger number is logged
};

/// Reads a table into the room. When the kernel does not answer, all of the room counts as filled.
int readEntries(const FilterTable& table, const char* agent, TarnFirewall::RequestMemory room,
                TableReply* reply);
