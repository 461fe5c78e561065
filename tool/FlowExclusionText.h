#pragma once

/// Definitions of flow exclusion as text. A definition is ten fields with "|" between them:
///
///     smac|dmac|ethertype|sip|dip|protocol|sport|dport|svnic|dvnic
///
/// A field that begins with "!" is negated; an empty one, or "!" alone, is not looked at.

#include <cstdio>

#include "FlowExclusionRecords.h"

/// Reads a definition into a record that is zero. Cuts the text, which is the caller's copy. False
/// after an error line on standard error.
bool ParseFlowExclusion(char* text, FWFlowExclusion_& record);

/// A function with the shape of `fprintf`.
typedef int (*FlowExclusionPrint)(std::FILE* stream, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

/// Prints a record as a definition, and a line end. What is read again gives the same record,
/// unless it has addresses of two families or an empty list. More items than a list has room for
/// are left out.
void PrintFlowExclusion(FlowExclusionPrint print, std::FILE* stream,
                        const FWFlowExclusion_& record);

/// The two lines over a table of `PrintLongFlowExclusion`.
void PrintLongFlowExclusionHeader(FlowExclusionPrint print, std::FILE* stream);

/// Prints a record as a row of the table, with "*" for a field that it does not name. What is wider
/// than its column is cut.
void PrintLongFlowExclusion(FlowExclusionPrint print, std::FILE* stream,
                            const FWFlowExclusion_& record);
