#include <cstdio>

#include "HandlerCommon.h"
#include "Handlers.h"

// The list is the short one on purpose: no other command is announced anywhere.
void printHelp(const char* word) {
  std::printf(
      "Usage: %s <cmd> <options>\n"
      "  below is a list of available cmd:\n"
      "    getfilters      : get list of filters\n"
      "    getfwconfig     : get rules, addrsets and containers of a filter\n"
      "    getrules        : get rules of a filter\n"
      "    getaddrsets     : get addrsets of a filter\n"
      "    getcontainers   : get containers of a filter\n"
      "    getspoofguard   : get spoofguard setting of a filter\n"
      "    getflows        : get flows of a filter\n"
      "    getconncount    : get active connection count\n"
      "    getconnections  : get active connections\n"
      "    getsisvmstats   : get service insertion service VM stats\n"
      "    getsisvctable   : dump service insertion service table\n"
      "    getsinshtable   : display service insertion nsh table\n"
      "    getsiproxytable : display service insertion proxy table\n"
      "    getmeminfo      : get meminfo data\n"
      "    getfqdnentries  : get fqdn entries\n"
      "    getdnsconfigprofile : get dns config profile for a filter\n"
      "    getfilterstat   : get statistics of a filter\n"
      "    gettimeout      : get connection timeout setting of a filter\n"
      "    getfloodstat    : get flood protection status\n"
      "    getsidcache     : get sid cache of a filter\n"
      "    help            : this help message\n"
      "  run `tarnioctl <cmd> -h' to find out available options of a cmd.\n",
      word);
}

int FWHelp(const char* cmd, int, char**) {
  printHelp(cmd);
  return 0;
}

int FWUnsupported(const char*, int, char**) {
  std::printf("Command unsupported in release build.\n");
  return 1;
}
