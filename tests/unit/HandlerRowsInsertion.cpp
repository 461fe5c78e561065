// Rows of the commands about service insertion.

#include "HandlerRows.h"

std::vector<HandlerRow> insertionRows() { return {}; }
