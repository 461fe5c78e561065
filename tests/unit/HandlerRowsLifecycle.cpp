// Rows of the commands that make and remove filters and agents, and keep the filter tables.

#include "HandlerRows.h"

std::vector<HandlerRow> lifecycleRows() { return {}; }
