/* A C program of another project, which declares the function that it calls. */

#include <stdio.h>

const char* FW_StatusToString(unsigned int status);

int main(void) {
  printf("%s\n", FW_StatusToString(21));
  return 0;
}
