// Runs a target once over every file of the folders on the command line.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

#include "Fuzz.h"

int main(int count, char** arguments) {
  unsigned int files = 0;
  for (int i = 1; i < count; ++i) {
    for (const auto& entry : std::filesystem::directory_iterator(arguments[i])) {
      std::ifstream file(entry.path(), std::ios::binary);
      const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
      std::vector<std::uint8_t> data(bytes.begin(), bytes.end());
      LLVMFuzzerTestOneInput(data.data(), data.size());
      ++files;
    }
  }
  std::printf("%u files\n", files);
  return files == 0 ? 1 : 0;
}
