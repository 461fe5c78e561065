// Rows of the commands that trace and reach the inspection process.

#include "HandlerRows.h"

std::vector<HandlerRow> traceRows() { return {}; }
