// Rows of the commands about flow exclusion.

#include "HandlerRows.h"

std::vector<HandlerRow> exclusionRows() { return {}; }
