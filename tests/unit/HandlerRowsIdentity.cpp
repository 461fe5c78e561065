// Rows of the commands about identifiers and what the data path has learned.

#include "HandlerRows.h"

std::vector<HandlerRow> identityRows() {
  return {
      {.words = {"number2uuid", "num2uuid"},
       .usage = "Convert coma separated number pairs to uuids.\n\n"
                "Usage: tarnioctl %s <number1,number2>\n"
                "    -b          : toggle byte order\n"
                "    -h          : this help message\n",
       .valueOption = nullptr,
       .takesFilter = false,
       .verbose = nullptr,
       .opensLibrary = false},
      {.words = {"uuid2number", "uuid2num"},
       .usage = "Convert uuids like 5a43ddda-c21a-632a-4ae1-00505699723f to number pairs.\n\n"
                "Usage: tarnioctl %s <uuid>\n"
                "    -b          : toggle byte order\n"
                "    -h          : this help message\n",
       .valueOption = nullptr,
       .takesFilter = false,
       .verbose = nullptr,
       .opensLibrary = false},
  };
}
