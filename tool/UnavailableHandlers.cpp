#include "HandlerCommon.h"
#include "Handlers.h"

/// Commands that this build does not have yet. Each stands in the table under its final handler, so
/// that a family that arrives only takes its lines out of here.

namespace {

int unavailable(const char* cmd) {
  return error("ERROR: command %s is not available in this build.\n", cmd);
}

}  // namespace

#define UNAVAILABLE(handler) \
  int handler(const char* cmd, int, char**) { return unavailable(cmd); }

UNAVAILABLE(AddFilter)
UNAVAILABLE(AddGRE)
UNAVAILABLE(ClearAllFilters)
UNAVAILABLE(ClearConnection)
UNAVAILABLE(ClearFilterStat)
UNAVAILABLE(ClearIpDisc)
UNAVAILABLE(ClearWeirgateTbl)
UNAVAILABLE(CreateAgent)
UNAVAILABLE(CreateInstance)
UNAVAILABLE(CreateProfile)
UNAVAILABLE(DelRules)
UNAVAILABLE(DeleteFilter)
UNAVAILABLE(DestroyAgent)
UNAVAILABLE(DestroyInstance)
UNAVAILABLE(DestroyProfile)
UNAVAILABLE(GetALGInfo)
UNAVAILABLE(GetConnAttrInfo)
UNAVAILABLE(GetConnectionCount)
UNAVAILABLE(GetConnections)
UNAVAILABLE(GetDnsConfigProfile)
UNAVAILABLE(GetFWFlows)
UNAVAILABLE(GetFWStatus)
UNAVAILABLE(GetFilterStat)
UNAVAILABLE(GetFilterTables)
UNAVAILABLE(GetFloodStat)
UNAVAILABLE(GetFlowExclusion)
UNAVAILABLE(GetFqdnEntries)
UNAVAILABLE(GetInstances)
UNAVAILABLE(GetIpDisc)
UNAVAILABLE(GetKifFlags)
UNAVAILABLE(GetLBConfig)
UNAVAILABLE(GetLBStat)
UNAVAILABLE(GetMeminfoData)
UNAVAILABLE(GetProfiles)
UNAVAILABLE(GetRTT)
UNAVAILABLE(GetSINshTable)
UNAVAILABLE(GetSIProxyTable)
UNAVAILABLE(GetSISVMProxyStats)
UNAVAILABLE(GetSISvcTable)
UNAVAILABLE(GetSharedAddrSet)
UNAVAILABLE(GetSkifferExportVersion)
UNAVAILABLE(GetSpoofGuard)
UNAVAILABLE(GetStateDPIInfo)
UNAVAILABLE(GetThresholds)
UNAVAILABLE(GetTimeout)
UNAVAILABLE(GetUid2SidMap)
UNAVAILABLE(GetVDPIInfo)
UNAVAILABLE(KifsFastPath)
UNAVAILABLE(ReplaceInstance)
UNAVAILABLE(RevalidateVM)
UNAVAILABLE(SetAddrSetCfg)
UNAVAILABLE(SetDnsConfigProfile)
UNAVAILABLE(SetFilterFlags)
UNAVAILABLE(SetFilterTables)
UNAVAILABLE(SetFloodConfig)
UNAVAILABLE(SetFlowExclusion)
UNAVAILABLE(SetICMPErrPktDrop)
UNAVAILABLE(SetIpDisc)
UNAVAILABLE(SetKifFlags)
UNAVAILABLE(SetL7CopyMode)
UNAVAILABLE(SetRegisterAgent)
UNAVAILABLE(SetSharedAddrSet)
UNAVAILABLE(SetSkifferExportVersion)
UNAVAILABLE(SetSkifferExportVersionAllFilters)
UNAVAILABLE(SetThresholds)
UNAVAILABLE(SetTimeout)
UNAVAILABLE(SetVerbose)
UNAVAILABLE(TraceHulld)
UNAVAILABLE(TraceTarn)

#undef UNAVAILABLE
