#include "CommandTable.h"

#include <strings.h>

#include <cstdio>
#include <cstring>

#include "HandlerCommon.h"
#include "Handlers.h"

// clang-format off
constexpr FWCommand_ g_cmd_table[kCommands] = {
    {0, GetFWFilters, "getfilters", "get list of filters"},
    {0, GetFWConfig, "getfwconfig", "get rules and addrsets of a filter"},
    {0, GetFWRules, "getrules", "get rules of a filter"},
    {0, GetFWRules, "getrule", "get rules of a filter"},
    {0, GetFWAddrSets, "getaddrsets", "get addrsets of a filter"},
    {0, GetFWAddrSets, "getaddrset", "get addrsets of a filter"},
    {0, GetFWContainer, "getcontainers", "get containers of a filter"},
    {0, GetSpoofGuard, "getspoofguard", "get spoofguard setting of a filter"},
    {0, GetFWFlows, "getflows", "get flows of a filter"},
    {0, GetIpDisc, "getdiscoveredips", "get the discovered VM IPs"},
    {0, GetConnectionCount, "getconncount", "get active connection count"},
    {0, GetConnections, "getconnections", "get active connections"},
    {0, SetIpDisc, "setipdiscovery", "set the IP discovery configuration"},
    {0, ClearIpDisc, "cleardiscoveredips", "clear the discovered VM IPs"},
    {0, GetSISVMProxyStats, "getsisvmstats", "get service insertion service VM stats"},
    {0, GetSISvcTable, "getsisvctable", "dump service insertion service table"},
    {0, GetSINshTable, "getsinshtable", "display service insertion nsh table"},
    {0, GetSIProxyTable, "getsiproxytable", "display service insertion proxy table"},
    {0, GetMeminfoData, "getmeminfo", "get meminfo data"},
    {0, GetFilterStat, "getfilterstat", "get statistics of a filter"},
    {0, GetFloodStat, "getfloodstat", "get flood protection status"},
    {0, FWHelp, "help", "standard help message"},
    {3, DelRules, "deleterules", "delete all rules of a ruleset"},
    {3, AddFilter, "addfilter", "add a filter"},
    {3, DeleteFilter, "deletefilter", "delete a filter"},
    {1, GetFWStatus, "getfwstatus", "get firewall enable/disable status"},
    {1, GetFilterTables, "getfiltertables", "get include and exclude list"},
    {3, SetFilterTables, "setfiltertables", "set include and exclude list"},
    {3, RevalidateVM, "revalidatevm", "revalidate vm(s) according to weirgate table"},
    {3, ClearAllFilters, "clearallfilters", "clear all dynamic filters"},
    {3, CreateAgent, "createagent", "create an agent"},
    {3, DestroyAgent, "destroyagent", "destroy an agent"},
    {3, CreateInstance, "createinstance", "create a service instance"},
    {3, DestroyInstance, "destroyinstance", "destroy a service instance"},
    {3, ReplaceInstance, "replaceinstance", "replace a service instance"},
    {1, GetInstances, "getinstances", "get a service instance"},
    {3, CreateProfile, "createprofile", "create a service profile"},
    {3, DestroyProfile, "destroyprofile", "destroy a service profile"},
    {1, GetProfiles, "getprofiles", "get a service profile"},
    {1, SetVerbose, "setverbose", "set verbose level in kernel"},
    {1, SetFailPolicy, "setfailpolicy", "set filter fail policy in kernel"},
    {1, GetFailPolicy, "getfailpolicy", "get filter fail policy from kernel"},
    {3, AddGRE, "gre", "add a GRE tunnel config"},
    {1, GetFlowExclusion, "getflowexclusion", "get flow exclusion setting"},
    {3, SetFlowExclusion, "setflowexclusion", "set flow exclusion setting"},
    {3, TarnFWCLI, "tarnfwcli", "tarnfwcli tool"},
    {3, ClearFilterStat, "clearfilterstat", "clear statistics of a filter"},
    {3, SetFilterFlags, "setfilterflags", "set flags of a filter"},
    {1, GetKifFlags, "getkifflags", "get kif flags"},
    {3, SetKifFlags, "setkifflags", "set kif flags"},
    {1, SetThresholds, "setthresholds", "set memory and cpu threshold"},
    {1, GetThresholds, "getthresholds", "get memory and cpu threshold"},
    {1, TraceHulld, "tracehulld", "trace hulld"},
    {1, TraceTarn, "tracetarn", "trace tarn"},
    {1, GetFqdnEntries, "getfqdnentries", "get fqdn entries of a filter"},
    {1, KifsFastPath, "kiffastpath", "set/show kif fast path flag"},
    {1, GetUid2SidMap, "getsidcache", "get sid cache of a filter"},
    {1, SetDnsConfigProfile, "setdnsconfigprofile", "set dns config profile for a filter"},
    {1, GetDnsConfigProfile, "getdnsconfigprofile", "get dns config profile for a filter"},
    {1, SetL7CopyMode, "setcopymode", "set l7 copy mode for a filter"},
    {1, GetTimeout, "gettimeout", "get connection timeout setting of a filter"},
    {3, SetTimeout, "settimeout", "set connection timeout setting of a filter"},
    {3, ClearWeirgateTbl, "clrwgttable", "remove the weirgate dynamic filter creation entries from an agent"},
    {3, ClearConnection, "clrconnection", "clear all active connections of a filter"},
    {3, SetSharedAddrSet, "setsharedaddrset", "enable shared rule addrset"},
    {1, GetSharedAddrSet, "getsharedaddrset", "get shared addrset setting"},
    {3, SetAddrSetCfg, "setaddrsetcfg", "configure addrset settings"},
    {1, GetVDPIInfo, "getdpiinfo", "get dpi info"},
    {1, GetALGInfo, "getalginfo", "display stored alg structures"},
    {3, SetICMPErrPktDrop, "seticmperrpktdrop", "config ICMP error packet handling"},
    {1, GetSkifferExportVersion, "getexportversion", "get skiffer export version"},
    {1, SetSkifferExportVersion, "setexportversion", "set skiffer export version"},
    {1, SetSkifferExportVersionAllFilters, "setexportversionall", "set skiffer export version on all filters"},
    {1, FWUnsupported, "getskifferdata", "get skiffer data"},
    {1, FWUnsupported, "setskifferdata", "set skiffer data"},
    {1, FWUnsupported, "migrate", "export/import tlv skiffer data"},
    {3, GetConnAttrInfo, "getattrinfo", "get attr settings"},
    {3, GetStateDPIInfo, "getstatedpiinfo", "get state dpi info"},
    {1, SetRegisterAgent, "registeragent", "register kelpco-sfw agent"},
    {1, SetFloodConfig, "setfloodconfig", "set flood protection config"},
    {1, Uuid2Number, "uuid2number", "convert uuid to number"},
    {1, Uuid2Number, "uuid2num", "convert uuid to number"},
    {1, Number2Uuid, "number2uuid", "convert number to uuid"},
    {1, Number2Uuid, "num2uuid", "convert number to uuid"},
    {1, GetLBConfig, "getlbinfo", "get LB information"},
    {1, GetLBStat, "getlbstat", "get LB statistics"},
    {1, GetRTT, "rtt", "retrieve RTT info for a flow"},
};
// clang-format on

const FWCommand_* findCommand(const char* word) {
  for (const FWCommand_& command : g_cmd_table)
    if (strcasecmp(word, command.name) == 0) return &command;
  return nullptr;
}

const char* programName(const char* path) {
  const char* name = path;
  for (const char* at = path; *at != '\0'; ++at)
    if (*at == '/') name = at + 1;
  return name;
}

int runCommand(int argc, char** argv) {
  if (argc < 2) {
    printHelp("help");
    return 1;
  }

  const char* const word = argv[1];
  if (word[0] == '-' && word[1] == 'h' && word[2] == '\0') {
    printHelp("help");
    return 0;
  }

  const FWCommand_* const command = findCommand(word);
  if (command == nullptr) {
    error("ERROR: unknown command `%s'\n\n", word);
    printHelp("help");
    return 1;
  }

  if ((command->flags & kCommandDangerous) == 0) return command->handler(word, argc - 1, argv + 1);

  // The guard looks at the second argument only: even -h comes after it.
  if (argc < 3 || std::strcmp(argv[2], "-Override") != 0) {
    error("ERROR: Command %s is dangerous and can cause unintended consequence!\n", word);
    return error(
        "ERROR: Please supply first option -Override in order to override the safety guard and "
        "actually run the command.\n");
  }
  return command->handler(word, argc - 2, argv + 2);
}
