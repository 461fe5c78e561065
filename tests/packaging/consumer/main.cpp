// A program of another project: the text of a status, through the installed shared library.

#include <tarnfw.h>

#include <cstdio>

int main() {
  std::printf("%s\n", FW_StatusToString(21));
  return 0;
}
