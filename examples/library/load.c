/* A C program that uses the installed library, by the functions of firewall.h: loads configuration
 * text into a filter and prints how many rules a rule set of it has. */

#include <stdio.h>

#include "firewall.h"

int main(int argc, char** argv) {
  const char* failure;
  unsigned int count = 0;
  if (argc != 4) {
    fprintf(stderr, "Usage: load FILTER TEXT RULESET\n");
    return 1;
  }
  failure = firewall_load(argv[1], argv[2]);
  if (failure == NULL) failure = firewall_count_rules(argv[1], argv[3], &count);
  if (failure != NULL) {
    fprintf(stderr, "load: %s\n", failure);
    return 1;
  }
  printf("%s: %u rules\n", argv[3], count);
  return 0;
}
