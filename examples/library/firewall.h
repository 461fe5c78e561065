/* What the C program asks of the firewall. firewall.cpp does it, by the library. */
#ifndef FIREWALL_H
#define FIREWALL_H

#ifdef __cplusplus
extern "C" {
#endif

/* Both return null for success, or the text of what failed. */

/* Loads configuration text into a filter. */
const char* firewall_load(const char* filter, const char* text);

/* Counts the rules of a rule set. */
const char* firewall_count_rules(const char* filter, const char* rule_set, unsigned int* count);

#ifdef __cplusplus
}
#endif

#endif
