// Rows of the commands that show flows and connections.

#include "HandlerRows.h"

std::vector<HandlerRow> flowRows() { return {}; }
