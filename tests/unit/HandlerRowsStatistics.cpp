// Rows of the commands that show balancers, ALG structures and statistics.

#include "HandlerRows.h"

std::vector<HandlerRow> statisticsRows() { return {}; }
