/* Grammar of the configuration language.
 *
 * The order of the tokens and of the productions is fixed: a token's code is 255 plus its position,
 * a token's name is what syntax messages print, and the number after a production is its number
 * in the generated parser. The grammar has no conflict. No production takes the error token: the
 * first error ends the parse.
 */

%require "3.8"
%language "c"
%define api.pure full
%define api.token.prefix {TK_}
%define parse.error verbose
%expect 0

%param {const TarnFirewall::FWParse& parse}

%code requires {
#include "TarnFWParserActionsAddress.h"
#include "TarnFWParserActionsAttribute.h"
#include "TarnFWParserActionsConnection.h"
#include "TarnFWParserActionsRule.h"
#include "TarnFWParserActionsRuleSet.h"

/// A place in the text. The parser keeps none, and the scanner fills none: the line counter serves.
struct YYLTYPE {
  int first_line;
  int first_column;
  int last_line;
  int last_column;
};
#define YYLTYPE_IS_DECLARED 1
}

%code provides {
/// Parses what the scanner reads. 0 on success, 1 on any error, 2 for a text that is nested too
/// deep or for want of memory.
int yyparse(TarnFirewall::FWStatus_t* status, void* scanner, const char* filename,
            TarnFirewall::CTarnFWCmdList** cmdList, TarnFirewall::CTarnFWCmdConfig** cmdConfig);

/// Reports a failure: the scanner's, if it has one, else `message`. Logs it with the place, gives
/// `*status` 16 ("parsing error") if it has none, and clears both results.
void yyerror(YYLTYPE* location, TarnFirewall::FWStatus_t* status, void* scanner,
             const char* filename, TarnFirewall::CTarnFWCmdList** cmdList,
             TarnFirewall::CTarnFWCmdConfig** cmdConfig, const char* message);
}

%code {
#include "TarnFWAddressAny.h"
#include "TarnFWAttributeUtils.h"
#include "TarnFWCmdCheckSpoofGuard.h"
#include "TarnFWCmdClearAddrSet.h"
#include "TarnFWCmdClearAllConnection.h"
#include "TarnFWCmdClearKifStat.h"
#include "TarnFWCmdClearRootRuleSet.h"
#include "TarnFWCmdClearRuleSet.h"
#include "TarnFWCmdClearRuleSetJump.h"
#include "TarnFWCmdConfigSharedAddrSet.h"
#include "TarnFWCmdDeleteSpoofGuard.h"
#include "TarnFWCmdDestroyAddrSet.h"
#include "TarnFWCmdDestroyAllAddrSet.h"
#include "TarnFWCmdDestroyAllRuleSet.h"
#include "TarnFWCmdDestroyRuleSet.h"
#include "TarnFWCmdGetAddrSetCount.h"
#include "TarnFWCmdGetAddrSetInfo.h"
#include "TarnFWCmdGetAddrSetTypeAndSize.h"
#include "TarnFWCmdGetConnectionCount.h"
#include "TarnFWCmdGetKifStat.h"
#include "TarnFWCmdGetLBConfig.h"
#include "TarnFWCmdGetLBStat.h"
#include "TarnFWCmdGetRootRuleSet.h"
#include "TarnFWCmdGetRuleCountOfRuleSet.h"
#include "TarnFWCmdGetRuleSetCount.h"
#include "TarnFWCmdGetRuleSetInfo.h"
#include "TarnFWCmdGetRuleSetJump.h"
#include "TarnFWCmdGetSharedAddrSet.h"
#include "TarnFWCmdGetSkifferExportver.h"
#include "TarnFWCmdGetSpoofGuardStat.h"
#include "TarnFWCmdGetTimeout.h"
#include "TarnFWCmdList.h"
#include "TarnFWCmdSetAllConnection.h"
#include "TarnFWCmdSetConnectionByFilter.h"
#include "TarnFWCmdSetSkifferExportver.h"
#include "TarnFWLog.h"
#include "TarnFWParserActionsSelector.h"
#include "TarnFWParserActionsSetting.h"
#include "TarnFWParserActionsStatement.h"
#include "TarnFWProtocolSpecSloppy.h"
#include "TarnFWProtocolSpecStateless.h"
#include "TarnFWProtocolSpecStrict.h"
#include "TarnFWProtocolSpecTCPFlags.h"
#include "TarnFWRuleActionAccept.h"
#include "TarnFWRuleActionClear.h"
#include "TarnFWRuleActionCopy.h"
#include "TarnFWRuleActionDivert.h"
#include "TarnFWRuleActionDrop.h"
#include "TarnFWRuleActionEncrypt.h"
#include "TarnFWRuleActionJumpto.h"
#include "TarnFWRuleActionPbr.h"
#include "TarnFWRuleActionPunt.h"
#include "TarnFWRuleActionReject.h"
#include "TarnFWScanner.h"

using namespace TarnFirewall;

/* Runs what may throw. When it does, the failure is reported, and the parse ends. */
#define TRY(...)                   \
  do {                             \
    try {                          \
      __VA_ARGS__;                 \
    } catch (...) {                \
      reportParseFailure(parse);   \
      YYERROR;                     \
    }                              \
  } while (false)

/* A value is copied at each step of the parser. What is larger than a pointer lies in the arena. */
static_assert(sizeof(YYSTYPE) == sizeof(void*));

/* The generated parser calls both without a location. */
static int yylex(YYSTYPE* value, const FWParse& parse) {
  return yylex(value, nullptr, parse.scanner);
}

static void yyerror(const FWParse& parse, const char* message) {
  yyerror(nullptr, parse.status, parse.scanner, parse.filename, parse.cmdList, parse.cmdConfig,
          message);
}
}

%union {
  const TarnFirewall::FWParserText* text;  /* in the arena */
  std::int64_t number;
  TarnFirewall::FWNumberRange numberRange;
  TarnFirewall::FWIPv4Range ipv4Range;
  TarnFirewall::FWIPv6Range* ipv6Range;  /* in the arena */
  TarnFirewall::fw_ether_ ether;
  TarnFirewall::FWEtherPair* etherPair;  /* in the arena */
  TarnFirewall::FWIdPort* idPort;        /* in the arena */
  TarnFirewall::FWIPPort ipPort;
  TarnFirewall::CTarnFWParserArena::Mark mark;
  TarnFirewall::dvs_port_* selector;     /* in the arena */
  TarnFirewall::FWRuleDirection_t direction;
  TarnFirewall::FWRuleAF_t af;
  TarnFirewall::FWActionFlags actionFlags;
  TarnFirewall::FWRulePoolOpt_t poolOption;
  std::uint16_t bits;
  TarnFirewall::CTarnFWCmd* command;
  TarnFirewall::CTarnFWAddress* address;
  TarnFirewall::CTarnFWAddressList* addressList;
  TarnFirewall::CTarnFWIDList* idList;
  TarnFirewall::FWConnection_* connection;  /* in the arena */
  TarnFirewall::CTarnFWConnectionList* connectionList;
  TarnFirewall::FWParserProtocol protocol;
  TarnFirewall::CTarnFWProtocolSpec* spec;
  TarnFirewall::CTarnFWProtocolSpecL4PortSet* portSet;
  TarnFirewall::CTarnFWProtocolSpecList* specList;
  TarnFirewall::CTarnFWRuleAction* action;
  TarnFirewall::CTarnFWContainerID* containerID;
  TarnFirewall::CTarnFWRule* rule;
  TarnFirewall::CTarnFWRuleList* ruleList;
  TarnFirewall::FWTexts* texts;
  TarnFirewall::FWNumbers* numbers;
  TarnFirewall::FWNamedUuid* namedUuid;  /* in the arena */
  TarnFirewall::FWNamedUuids* namedUuids;
  TarnFirewall::FWL7Attributes* attributes;
}

%destructor { delete $$; }
  <command> <address> <addressList> <idList> <spec> <portSet> <specList> <action>
  <containerID> <rule> <ruleList> <connectionList> <texts> <numbers> <namedUuids> <attributes>

%token COMMENT "TK_COMMENT"
%token CREATE "keyword create"
%token ADD "keyword add"
%token DELETE "keyword delete"
%token REPLACE "keyword replace"
%token DESCRIBE "keyword describe"
%token DESTROY "keyword destroy"
%token ENABLE "keyword enable"
%token DISABLE "keyword disable"
%token SET "keyword set"
%token REORDER "keyword reorder"
%token CLEAR "keyword clear"
%token RULESET "keyword ruleset"
%token ADDRSET "keyword addrset"
%token ATTRSET "keyword attrset"
%token ATTRIBUTE "keyword attribute"
%token ADDRESS "keyword address"
%token SHARED "keyword shared"
%token <mark> RULE "keyword rule"
%token DVSWITCH "keyword dvswitch"
%token PORT "keyword port"
%token ROOT "keyword root"
%token DEFAULT "keyword default"
%token AGENT "keyword agent"
%token DVSPORT "keyword dvsport"
%token INET "keyword inet"
%token INET6 "keyword inet6"
%token IP "keyword ip"
%token MAC "keyword mac"
%token VNIC "keyword vnic"
%token FILTER "keyword filter"
%token VIF "keyword vif"
%token SIZE "keyword size"
%token INFO "keyword info"
%token STAT "keyword stat"
%token REVISION "keyword revision"
%token CHECKSUM "keyword checksum"
%token AT "keyword at"
%token INOUT "keyword inout"
%token IN "keyword in"
%token OUT "keyword out"
%token OF "keyword of"
%token TO "keyword to"
%token AS "keyword as"
%token WITH "keyword with"
%token AND "keyword and"
%token INTO "keyword into"
%token FROM "keyword from"
%token ALL "keyword all"
%token ACCEPT "keyword pass/accept"
%token ENCRYPT "keyword encrypt"
%token DROP "keyword drop"
%token REJECT "keyword reject/deny"
%token JUMPTO "keyword jumpto"
%token PUNT "keyword punt"
%token PBR "keyword pbr"
%token SNAT "keyword snat"
%token DNAT "keyword dnat"
%token LB "keyword lb"
%token RBE "keyword rbe"
%token LOG "keyword log"
%token NOFLOW "keyword noflow"
%token LBRULE "keyword lbrule"
%token RTT "keyword rtt"
%token TAG "keyword tag"
%token STATELESS "keyword stateless"
%token SLOPPY "keyword sloppy"
%token DSCP "keyword dscp"
%token FTP "keyword ftp"
%token ORACLE "keyword oracle"
%token DCERPC "keyword dcerpc"
%token SUNRPC "keyword sunrpc"
%token DIVERT "keyword divert"
%token MACREWRITE "keyword macrewrite"
%token COPY "keyword copy"
%token NOT "keyword not"
%token ETHERTYPE "keyword ethertype"
%token PROTOCOL "keyword protocol"
%token FLAG "keyword flag"
%token FLAGS "keyword flags"
%token SYN "keyword SYN"
%token FIN "keyword FIN"
%token RST "keyword RST"
%token PSH "keyword PSH"
%token ACK "keyword ACK"
%token URG "keyword URG"
%token ECE "keyword ECE"
%token CWR "keyword CWR"
%token NS "keyword NS"
%token OPTION "keyword option"
%token ICMPTYPE "keyword icmptype"
%token TYPECODE "keyword typecode"
%token LIST "keyword list"
%token CONNECTION "keyword connection"
%token COUNT "keyword count"
%token SPOOFGUARD "keyword spoofguard"
%token KIF "keyword kif"
%token ANY "keyword any"
%token CONFIG "keyword config"
%token DEVICE "keyword device"
%token FILE "keyword file"
%token SOCKET "keyword socket"
%token RIBS "keyword ribs"
%token SAVE "keyword save"
%token DEBUG "keyword debug"
%token STRICT "keyword strict"
%token TIMEOUT "keyword timeout"
%token KEYPOLICY "keyword keypolicy"
%token POOLOPT "keyword poolopt"
%token LBTYPE "keyword lbtype"
%token LBOPTIONS "keyword lboptions"
%token LBIDLETIMEOUT "keyword lbidletimeout"
%token LBCLOSETIMEOUT "keyword lbclosetimeout"
%token LB_L4 "keyword lb-l4"
%token LB_L7 "keyword lb-l7"
%token ROUND_ROBIN "keyword round-robin"
%token RANDOM "keyword random"
%token TCP_CONN_BALANCE "keyword tcp-conn-balance"
%token EXPORTVER "keyword exportver"
%token EXTSRCPROFILE "keyword extsrcprofile"
%token ATTRPROFILE "keyword attrprofile"
%token CONNATTR "keyword connattr"
%token DOMAIN2IP "keyword domain2ip"
%token UID2SIDMAP "keyword uid2sidmap"
%token UUID "keyword uuid"
%token MAPPED "keyword mapped"
%token LBRACKET "["
%token RBRACKET "]"
%token LBRACE "{"
%token RBRACE "}"
%token SEMICOLON ";"
%token DASH "-"
%token COMMA ","
%token COLON ":"
%token DOT "."
%token <text> IPV4_CIDR "IPv4 address with CIDR"
%token <text> IPV4_MASK "IPv4 address with mask"
%token <ipv4Range> IPV4_RANGE "IPv4 address with range"
%token <text> IPV4 "IPv4 address"
%token <text> IPV6 "IPv6 address"
%token <text> IPV6_CIDR "IPv6 address with CIDR"
%token <ipv6Range> IPV6_RANGE "IPv6 address with range"
%token <text> IPV4_PORT "IPv4:port"
%token <text> ANY_PORT "Any:port"
%token <ether> ETHER "Ethernet address"
%token <etherPair> ETHER_RANGE "Ethernet address with range"
%token <etherPair> ETHER_MASK "Ethernet address with mask"
%token <idPort> ID_PORT "UUID:port"
%token <text> STRING "double-quoted string"
%token <number> NUMBER "decimal"
%token <numberRange> NUMBER_RANGE "range"

%nterm <command> Cmd_Create_RuleSet Cmd_Get_Root_RuleSet Cmd_Set_Root_RuleSet Cmd_Clear_Root_RuleSet
    Cmd_Destroy_RuleSet Cmd_Destroy_All_RuleSet Cmd_Set_RuleSet_Jump Cmd_Get_RuleSet_Jump
    Cmd_Clear_RuleSet_Jump Cmd_Clear_RuleSet Cmd_Get_Rule_Count_Of_RuleSet Cmd_Get_RuleSet_Info
    Cmd_Get_Rule_Of_RuleSet Cmd_Get_Stat_Of_RuleSet Cmd_Get_RuleSet_Count Cmd_Get_RuleSet_List
    Cmd_Get_Connection_Count Cmd_Set_Connection_By_Filter Cmd_Set_Connection_By_List
    Cmd_Set_All_Connection Cmd_Get_Connection_Stat Cmd_Clear_All_Connection Cmd_Get_Exportver
    Cmd_Set_Exportver Cmd_Create_AttrProfile Cmd_Delete_AttrProfile Cmd_Add_Domain_IP_Map
    Cmd_Set_Uid2Sid_Mapping Cmd_Set_Connection_Attr Cmd_Create_AddrSet Cmd_Clear_AddrSet
    Cmd_Destroy_AddrSet Cmd_Destroy_All_AddrSet Cmd_Get_AddrSet_Size Cmd_Get_AddrSet_Info
    Cmd_Get_AddrSet_Stat Cmd_Get_Address_Of_AddrSet Cmd_Get_AddrSet_Count Cmd_Get_AddrSet_List
    Cmd_Create_SpoofGuard Cmd_Delete_SpoofGuard Cmd_Check_SpoofGuard Cmd_Get_SpoofGuard_Stat
    Cmd_Get_Kif_Stat Cmd_Clear_Kif_Stat Cmd_Get_LB_Config Cmd_Get_LB_Stat Cmd_Config Cmd_Debug
    Rule_Command
%nterm <address> Single_IP_Address IP_Address Single_IP_Address_Or_Any IP_Address_Or_Any MAC_Address
    Single_MAC_Address Attribute_Obj Single_Attribute_Obj Src_Addr_Spec Dst_Addr_Spec Address_Spec
%nterm <addressList> IP_List Single_IP_Or_List MAC_List Single_MAC_Or_List Attribute_List
    Single_Attribute_Or_List Optional_Single_Attribute_Or_List
%nterm <selector> DVS_Port Optional_DVS_Port
%nterm <ipPort> Single_IP_Port Single_IP_Or_Any_Port
%nterm <idList> ID_List Single_ID_Or_List
%nterm <text> Optional_Save_to Optional_Rule_Tag Key_Policy
%nterm <specList> Optional_Protocol_Spec Protocol_Spec Proto_Spec_List
%nterm <spec> Optional_Port_Spec Single_Port_Spec Single_Proto_Spec
%nterm <portSet> L4_Port_List
%nterm <action> Rule_Action Single_Rule_Action
%nterm <protocol> Rule_Protocol
%nterm <rule> Single_Rule
%nterm <ruleList> Rule_List Set_of_Rules
%nterm <containerID> Optional_ExtSrc_Profile_Spec Optional_Attribute_Profile_Spec
%nterm <actionFlags> Optional_Rule_Action_Flag With_Rule_Action_Flag As_Dynamic_App
%nterm <bits> Rule_Action_Flag_List Single_TCP_Flag_Or_List TCP_Flag_List TCP_Flag LB_Type
    Optional_Persist_Timeout
%nterm <poolOption> Pool_Option
%nterm <direction> Rule_Direction
%nterm <af> Optional_Rule_AF
%nterm <number> Rule_Position Export_Version Optional_StateID
%nterm <connection> Single_Connection Optional_ConnSpec
%nterm <connectionList> Connection_List
%nterm <texts> L7AttrStringValueList
%nterm <numbers> L7AttrIntValueList
%nterm <namedUuid> L7AttrUUIDValue
%nterm <namedUuids> L7AttrUUIDValueList
%nterm <attributes> L7AttributeList Single_L7Attribute_Or_List

%start Firewall

%%

Firewall:
    Rule_Cmd_List  /* 2 */
    ;

Rule_Cmd_List:
    %empty  /* 3 */
      { TRY(parse.begin()); }
  | Rule_Cmd_List Rule_Command  /* 4 */
      { TRY(addStatement(parse, own($2))); }
    ;

Rule_Command:
    Cmd_Create_RuleSet SEMICOLON  /* 5 */
  | Cmd_Get_Root_RuleSet SEMICOLON  /* 6 */
  | Cmd_Set_Root_RuleSet SEMICOLON  /* 7 */
  | Cmd_Clear_Root_RuleSet SEMICOLON  /* 8 */
  | Cmd_Destroy_RuleSet SEMICOLON  /* 9 */
  | Cmd_Destroy_All_RuleSet SEMICOLON  /* 10 */
  | Cmd_Set_RuleSet_Jump SEMICOLON  /* 11 */
  | Cmd_Get_RuleSet_Jump SEMICOLON  /* 12 */
  | Cmd_Clear_RuleSet_Jump SEMICOLON  /* 13 */
  | Cmd_Clear_RuleSet SEMICOLON  /* 14 */
  | Cmd_Get_Rule_Count_Of_RuleSet SEMICOLON  /* 15 */
  | Cmd_Get_RuleSet_Info SEMICOLON  /* 16 */
  | Cmd_Get_Rule_Of_RuleSet SEMICOLON  /* 17 */
  | Cmd_Get_Stat_Of_RuleSet SEMICOLON  /* 18 */
  | Cmd_Get_RuleSet_Count SEMICOLON  /* 19 */
  | Cmd_Get_RuleSet_List SEMICOLON  /* 20 */
  | Cmd_Get_Connection_Count SEMICOLON  /* 21 */
  | Cmd_Set_Connection_By_Filter SEMICOLON  /* 22 */
  | Cmd_Set_Connection_By_List SEMICOLON  /* 23 */
  | Cmd_Set_All_Connection SEMICOLON  /* 24 */
  | Cmd_Get_Connection_Stat SEMICOLON  /* 25 */
  | Cmd_Clear_All_Connection SEMICOLON  /* 26 */
  | Cmd_Get_Exportver SEMICOLON  /* 27 */
  | Cmd_Set_Exportver SEMICOLON  /* 28 */
  | Cmd_Create_AddrSet SEMICOLON  /* 29 */
  | Cmd_Clear_AddrSet SEMICOLON  /* 30 */
  | Cmd_Destroy_AddrSet SEMICOLON  /* 31 */
  | Cmd_Destroy_All_AddrSet SEMICOLON  /* 32 */
  | Cmd_Get_AddrSet_Size SEMICOLON  /* 33 */
  | Cmd_Get_AddrSet_Info SEMICOLON  /* 34 */
  | Cmd_Get_Address_Of_AddrSet SEMICOLON  /* 35 */
  | Cmd_Get_AddrSet_Count SEMICOLON  /* 36 */
  | Cmd_Get_AddrSet_List SEMICOLON  /* 37 */
  | Cmd_Get_AddrSet_Stat SEMICOLON  /* 38 */
  | Cmd_Create_SpoofGuard SEMICOLON  /* 39 */
  | Cmd_Delete_SpoofGuard SEMICOLON  /* 40 */
  | Cmd_Check_SpoofGuard SEMICOLON  /* 41 */
  | Cmd_Get_SpoofGuard_Stat SEMICOLON  /* 42 */
  | Cmd_Get_Kif_Stat SEMICOLON  /* 43 */
  | Cmd_Clear_Kif_Stat SEMICOLON  /* 44 */
  | Cmd_Config SEMICOLON  /* 45 */
  | Cmd_Debug SEMICOLON  /* 46 */
  | Cmd_Create_AttrProfile SEMICOLON  /* 47 */
  | Cmd_Delete_AttrProfile SEMICOLON  /* 48 */
  | Cmd_Set_Connection_Attr SEMICOLON  /* 49 */
  | Cmd_Add_Domain_IP_Map SEMICOLON  /* 50 */
  | Cmd_Set_Uid2Sid_Mapping SEMICOLON  /* 51 */
  | Cmd_Get_LB_Config SEMICOLON  /* 52 */
  | Cmd_Get_LB_Stat SEMICOLON  /* 53 */
    ;

Cmd_Create_RuleSet:
    CREATE RULESET STRING Optional_DVS_Port WITH Set_of_Rules  /* 54 */
      { TRY($$ = createRuleSet($4, *$3, own($6)).release()); }
  | CREATE RULESET STRING Optional_DVS_Port Set_of_Rules  /* 55 */
      { TRY($$ = createRuleSet($4, *$3, own($5)).release()); }
  | CREATE RULESET STRING Optional_DVS_Port JUMPTO STRING WITH Set_of_Rules  /* 56 */
      { TRY($$ = createRuleSetWithJump($4, *$3, *$6, own($8)).release()); }
  | CREATE RULESET STRING Optional_DVS_Port WITH Single_Rule  /* 57 */
      { TRY($$ = createRuleSetOfOne($4, *$3, own($6)).release()); }
  | CREATE RULESET STRING Optional_DVS_Port  /* 58 */
      { TRY($$ = createEmptyRuleSet($4, *$3).release()); }
    ;

Cmd_Get_Root_RuleSet:
    DESCRIBE ROOT RULESET Optional_DVS_Port  /* 59 */
      { TRY($$ = new CTarnFWCmdGetRootRuleSet($4)); }
    ;

Cmd_Set_Root_RuleSet:
    SET ROOT RULESET STRING Optional_DVS_Port  /* 60 */
      { TRY($$ = setRootRuleSet($5, *$4).release()); }
  | SET ROOT RULESET STRING AND STRING Optional_DVS_Port  /* 61 */
      { TRY($$ = setRootRuleSets($7, *$4, *$6).release()); }
    ;

Cmd_Clear_Root_RuleSet:
    CLEAR ROOT RULESET Optional_DVS_Port  /* 62 */
      { TRY($$ = new CTarnFWCmdClearRootRuleSet($4)); }
    ;

Cmd_Destroy_RuleSet:
    DESTROY RULESET STRING Optional_DVS_Port  /* 63 */
      { TRY($$ = new CTarnFWCmdDestroyRuleSet($4, ruleSetName(*$3))); }
    ;

Cmd_Destroy_All_RuleSet:
    DESTROY ALL RULESET Optional_DVS_Port  /* 64 */
      { TRY($$ = new CTarnFWCmdDestroyAllRuleSet($4)); }
    ;

Cmd_Set_RuleSet_Jump:
    SET JUMPTO OF RULESET STRING AS STRING Optional_DVS_Port  /* 65 */
      { TRY($$ = setRuleSetJump($8, *$5, *$7).release()); }
    ;

Cmd_Get_RuleSet_Jump:
    DESCRIBE JUMPTO OF RULESET STRING Optional_DVS_Port  /* 66 */
      { TRY($$ = new CTarnFWCmdGetRuleSetJump($6, ruleSetName(*$5))); }
    ;

Cmd_Clear_RuleSet_Jump:
    CLEAR JUMPTO OF RULESET STRING Optional_DVS_Port  /* 67 */
      { TRY($$ = new CTarnFWCmdClearRuleSetJump($6, ruleSetName(*$5))); }
    ;

Cmd_Clear_RuleSet:
    CLEAR RULE OF RULESET STRING Optional_DVS_Port  /* 68 */
      { TRY($$ = new CTarnFWCmdClearRuleSet($6, ruleSetName(*$5))); }
    ;

Cmd_Get_Rule_Count_Of_RuleSet:
    DESCRIBE RULE COUNT OF RULESET STRING Optional_DVS_Port  /* 69 */
      { TRY($$ = new CTarnFWCmdGetRuleCountOfRuleSet($7, ruleSetName(*$6), FW_RULES_FILTER)); }
  | DESCRIBE SNAT RULE COUNT OF RULESET STRING Optional_DVS_Port  /* 70 */
      { TRY($$ = new CTarnFWCmdGetRuleCountOfRuleSet($8, ruleSetName(*$7), FW_RULES_SNAT)); }
  | DESCRIBE DNAT RULE COUNT OF RULESET STRING Optional_DVS_Port  /* 71 */
      { TRY($$ = new CTarnFWCmdGetRuleCountOfRuleSet($8, ruleSetName(*$7), FW_RULES_DNAT)); }
    ;

Cmd_Get_RuleSet_Info:
    DESCRIBE INFO OF RULESET STRING Optional_DVS_Port  /* 72 */
      { TRY($$ = new CTarnFWCmdGetRuleSetInfo($6, ruleSetName(*$5))); }
    ;

Cmd_Get_Rule_Of_RuleSet:
    DESCRIBE RULE OF RULESET STRING Optional_DVS_Port  /* 73 */
      { TRY($$ = getRules($6, *$5, 0, FW_RULES_FILTER).release()); }
  | DESCRIBE RULE OF RULESET STRING FROM NUMBER Optional_DVS_Port  /* 74 */
      { TRY($$ = getRules($8, *$5, $7, FW_RULES_FILTER).release()); }
  | DESCRIBE RULE OF RULESET STRING Optional_DVS_Port WITH Single_ID_Or_List  /* 75 */
      { TRY($$ = getRules($6, *$5, own($8), FW_RULES_FILTER).release()); }
  | DESCRIBE SNAT RULE OF RULESET STRING Optional_DVS_Port  /* 76 */
      { TRY($$ = getRules($7, *$6, 0, FW_RULES_SNAT).release()); }
  | DESCRIBE SNAT RULE OF RULESET STRING FROM NUMBER Optional_DVS_Port  /* 77 */
      { TRY($$ = getRules($9, *$6, $8, FW_RULES_SNAT).release()); }
  | DESCRIBE SNAT RULE OF RULESET STRING Optional_DVS_Port WITH Single_ID_Or_List  /* 78 */
      { TRY($$ = getRules($7, *$6, own($9), FW_RULES_SNAT).release()); }
  | DESCRIBE DNAT RULE OF RULESET STRING Optional_DVS_Port  /* 79 */
      { TRY($$ = getRules($7, *$6, 0, FW_RULES_DNAT).release()); }
  | DESCRIBE DNAT RULE OF RULESET STRING FROM NUMBER Optional_DVS_Port  /* 80 */
      { TRY($$ = getRules($9, *$6, $8, FW_RULES_DNAT).release()); }
  | DESCRIBE DNAT RULE OF RULESET STRING Optional_DVS_Port WITH Single_ID_Or_List  /* 81 */
      { TRY($$ = getRules($7, *$6, own($9), FW_RULES_DNAT).release()); }
    ;

Cmd_Get_Stat_Of_RuleSet:
    DESCRIBE STAT OF RULESET STRING Optional_DVS_Port  /* 82 */
      { TRY($$ = getStats($6, *$5, 0, FW_RULES_FILTER).release()); }
  | DESCRIBE STAT OF RULESET STRING FROM NUMBER Optional_DVS_Port  /* 83 */
      { TRY($$ = getStats($8, *$5, $7, FW_RULES_FILTER).release()); }
  | DESCRIBE STAT OF RULESET STRING Optional_DVS_Port WITH Single_ID_Or_List  /* 84 */
      { TRY($$ = getStats($6, *$5, own($8), FW_RULES_FILTER).release()); }
  | DESCRIBE SNAT STAT OF RULESET STRING Optional_DVS_Port  /* 85 */
      { TRY($$ = getStats($7, *$6, 0, FW_RULES_SNAT).release()); }
  | DESCRIBE SNAT STAT OF RULESET STRING FROM NUMBER Optional_DVS_Port  /* 86 */
      { TRY($$ = getStats($9, *$6, $8, FW_RULES_SNAT).release()); }
  | DESCRIBE SNAT STAT OF RULESET STRING Optional_DVS_Port WITH Single_ID_Or_List  /* 87 */
      { TRY($$ = getStats($7, *$6, own($9), FW_RULES_SNAT).release()); }
  | DESCRIBE DNAT STAT OF RULESET STRING Optional_DVS_Port  /* 88 */
      { TRY($$ = getStats($7, *$6, 0, FW_RULES_DNAT).release()); }
  | DESCRIBE DNAT STAT OF RULESET STRING FROM NUMBER Optional_DVS_Port  /* 89 */
      { TRY($$ = getStats($9, *$6, $8, FW_RULES_DNAT).release()); }
  | DESCRIBE DNAT STAT OF RULESET STRING Optional_DVS_Port WITH Single_ID_Or_List  /* 90 */
      { TRY($$ = getStats($7, *$6, own($9), FW_RULES_DNAT).release()); }
    ;

Cmd_Get_RuleSet_Count:
    DESCRIBE COUNT OF RULESET Optional_DVS_Port  /* 91 */
      { TRY($$ = new CTarnFWCmdGetRuleSetCount($5)); }
    ;

Cmd_Get_RuleSet_List:
    DESCRIBE LIST OF RULESET Optional_DVS_Port  /* 92 */
      { TRY($$ = getRuleSetList($5, 0).release()); }
  | DESCRIBE LIST OF RULESET FROM NUMBER Optional_DVS_Port  /* 93 */
      { TRY($$ = getRuleSetList($7, $6).release()); }
    ;

Cmd_Get_Connection_Count:
    DESCRIBE CONNECTION COUNT Optional_DVS_Port  /* 94 */
      { TRY($$ = new CTarnFWCmdGetConnectionCount($4, nullptr)); }
    ;

Cmd_Set_Connection_By_Filter:
    SET CONNECTION Optional_DVS_Port  /* 95 */
      { TRY($$ = new CTarnFWCmdSetConnectionByFilter($3, nullptr)); }
    ;

Cmd_Set_Connection_By_List:
    SET CONNECTION Optional_DVS_Port WITH LBRACE Connection_List RBRACE  /* 96 */
      { TRY($$ = setConnections($3, own($6)).release()); }
  | SET CONNECTION Optional_DVS_Port WITH Single_Connection  /* 97 */
      { TRY($$ = setConnections($3, withConnection({}, *$5)).release()); }
    ;

Cmd_Set_All_Connection:
    SET ALL CONNECTION Optional_DVS_Port  /* 98 */
      { TRY($$ = new CTarnFWCmdSetAllConnection($4)); }
    ;

Cmd_Get_Connection_Stat:
    DESCRIBE CONNECTION STAT Optional_DVS_Port  /* 99 */
      { TRY($$ = getConnections($4, 0).release()); }
  | DESCRIBE CONNECTION STAT FROM NUMBER Optional_DVS_Port  /* 100 */
      { TRY($$ = getConnections($6, $5).release()); }
    ;

Cmd_Clear_All_Connection:
    CLEAR ALL CONNECTION Optional_DVS_Port  /* 101 */
      { TRY($$ = new CTarnFWCmdClearAllConnection($4)); }
    ;

Cmd_Get_Exportver:
    DESCRIBE EXPORTVER Optional_DVS_Port  /* 102 */
      { TRY($$ = new CTarnFWCmdGetSkifferExportver($3)); }
    ;

Cmd_Set_Exportver:
    SET EXPORTVER Export_Version Optional_DVS_Port  /* 103 */
      { TRY($$ = new CTarnFWCmdSetSkifferExportver($4, static_cast<std::uint32_t>($3))); }
    ;

Cmd_Create_AttrProfile:
    CREATE ATTRPROFILE STRING Optional_DVS_Port WITH LBRACE Single_L7Attribute_Or_List RBRACE  /* 104 */
      { TRY($$ = createAttrProfile($4, *$3, own($7)).release()); }
    ;

Cmd_Delete_AttrProfile:
    DELETE ATTRPROFILE STRING Optional_DVS_Port  /* 105 */
      { TRY($$ = new CTarnFWCmdDestroyAddrSet($4, addrSetName(*$3))); }
    ;

Cmd_Add_Domain_IP_Map:
    ADD DOMAIN2IP Optional_DVS_Port L7AttrUUIDValue WITH LBRACE Single_IP_Or_List RBRACE  /* 106 */
      { TRY($$ = addDomainAddresses($3, *$4, own($7)).release()); }
    ;

Cmd_Set_Uid2Sid_Mapping:
    SET UID2SIDMAP Optional_DVS_Port STRING LBRACE L7AttrStringValueList RBRACE  /* 107 */
      { TRY($$ = setUserMap($3, *$4, own($6)).release()); }
    ;

Cmd_Set_Connection_Attr:
    SET CONNATTR Optional_DVS_Port Optional_ConnSpec Optional_StateID WITH LBRACE Single_L7Attribute_Or_List RBRACE  /* 108 */
      { TRY($$ = setConnectionAttributes($3, $4, $5, own($8)).release()); }
    ;

Cmd_Create_AddrSet:
    CREATE STRING ATTRSET { attribute_type = FWAttribute_str2key($2->data); } STRING Optional_DVS_Port Optional_Single_Attribute_Or_List  /* 110 */
      { TRY($$ = createAddrSet($6, *$5, FW_ADDRSET_ATTRIBUTE, own($7)).release()); }
  | CREATE ADDRSET STRING Optional_DVS_Port WITH Single_IP_Or_List  /* 111 */
      { TRY($$ = createAddrSet($4, *$3, FW_ADDRSET_IP, own($6)).release()); }
  | CREATE ADDRSET STRING Optional_DVS_Port WITH Single_MAC_Or_List  /* 112 */
      { TRY($$ = createAddrSet($4, *$3, FW_ADDRSET_MAC, own($6)).release()); }
  | CREATE ADDRSET STRING Optional_DVS_Port Single_IP_Or_List  /* 113 */
      { TRY($$ = createAddrSet($4, *$3, FW_ADDRSET_IP, own($5)).release()); }
  | CREATE ADDRSET STRING Optional_DVS_Port Single_MAC_Or_List  /* 114 */
      { TRY($$ = createAddrSet($4, *$3, FW_ADDRSET_MAC, own($5)).release()); }
  | CREATE ADDRSET STRING Optional_DVS_Port  /* 115 */
      { TRY($$ = createAddrSet($4, *$3, FW_ADDRSET_IP, nullptr).release()); }
    ;

Cmd_Clear_AddrSet:
    DELETE ALL FROM ADDRSET STRING Optional_DVS_Port  /* 116 */
      { TRY($$ = new CTarnFWCmdClearAddrSet($6, addrSetName(*$5))); }
    ;

Cmd_Destroy_AddrSet:
    DESTROY ADDRSET STRING Optional_DVS_Port  /* 117 */
      { TRY($$ = new CTarnFWCmdDestroyAddrSet($4, addrSetName(*$3))); }
    ;

Cmd_Destroy_All_AddrSet:
    DESTROY ALL ADDRSET Optional_DVS_Port  /* 118 */
      { TRY($$ = new CTarnFWCmdDestroyAllAddrSet($4)); }
    ;

Cmd_Get_AddrSet_Size:
    DESCRIBE SIZE OF ADDRSET STRING Optional_DVS_Port  /* 119 */
      { TRY($$ = new CTarnFWCmdGetAddrSetTypeAndSize($6, addrSetName(*$5))); }
    ;

Cmd_Get_AddrSet_Info:
    DESCRIBE INFO OF ADDRSET STRING Optional_DVS_Port  /* 120 */
      { TRY($$ = new CTarnFWCmdGetAddrSetInfo($6, addrSetName(*$5))); }
    ;

Cmd_Get_AddrSet_Stat:
    DESCRIBE STAT OF ADDRSET Optional_DVS_Port  /* 121 */
      { TRY($$ = getAddrSetStats($5).release()); }
    ;

Cmd_Get_Address_Of_AddrSet:
    DESCRIBE ADDRESS OF ADDRSET STRING Optional_DVS_Port  /* 122 */
      { TRY($$ = getAddresses($6, *$5, 0).release()); }
  | DESCRIBE ADDRESS OF ADDRSET STRING FROM NUMBER Optional_DVS_Port  /* 123 */
      { TRY($$ = getAddresses($8, *$5, $7).release()); }
    ;

Cmd_Get_AddrSet_Count:
    DESCRIBE COUNT OF ADDRSET Optional_DVS_Port  /* 124 */
      { TRY($$ = new CTarnFWCmdGetAddrSetCount($5, FW_ADDRSET_ANY)); }
    ;

Cmd_Get_AddrSet_List:
    DESCRIBE LIST OF ADDRSET Optional_DVS_Port  /* 125 */
      { TRY($$ = getAddrSetList($5, 0).release()); }
  | DESCRIBE LIST OF ADDRSET FROM NUMBER Optional_DVS_Port  /* 126 */
      { TRY($$ = getAddrSetList($7, $6).release()); }
    ;

Cmd_Create_SpoofGuard:
    CREATE SPOOFGUARD WITH IP Single_IP_Or_List AND MAC Single_MAC_Address Optional_DVS_Port  /* 127 */
      { TRY($$ = createSpoofGuard($9, own($5), own($8)).release()); }
  | CREATE SPOOFGUARD WITH ADDRSET STRING AND MAC Single_MAC_Address Optional_DVS_Port  /* 128 */
      { TRY($$ = createSpoofGuard($9, *$5, own($8)).release()); }
    ;

Cmd_Delete_SpoofGuard:
    DELETE SPOOFGUARD Optional_DVS_Port  /* 129 */
      { TRY($$ = new CTarnFWCmdDeleteSpoofGuard($3, nullptr)); }
  | DELETE SPOOFGUARD WITH MAC Single_MAC_Address Optional_DVS_Port  /* 130 */
      { TRY($$ = deleteSpoofGuard($6, own($5)).release()); }
    ;

Cmd_Check_SpoofGuard:
    DESCRIBE SPOOFGUARD Optional_DVS_Port  /* 131 */
      { TRY($$ = new CTarnFWCmdCheckSpoofGuard($3)); }
    ;

Cmd_Get_SpoofGuard_Stat:
    DESCRIBE STAT OF SPOOFGUARD Optional_DVS_Port  /* 132 */
      { TRY($$ = new CTarnFWCmdGetSpoofGuardStat($5)); }
    ;

Cmd_Get_Kif_Stat:
    DESCRIBE STAT OF KIF Optional_DVS_Port  /* 133 */
      { TRY($$ = new CTarnFWCmdGetKifStat($5)); }
    ;

Cmd_Clear_Kif_Stat:
    CLEAR STAT OF KIF Optional_DVS_Port  /* 134 */
      { TRY($$ = new CTarnFWCmdClearKifStat($5)); }
    ;

Cmd_Get_LB_Config:
    DESCRIBE CONFIG OF LB Optional_DVS_Port  /* 135 */
      { TRY($$ = new CTarnFWCmdGetLBConfig($5)); }
    ;

Cmd_Get_LB_Stat:
    DESCRIBE STAT OF LB Optional_DVS_Port  /* 136 */
      { TRY($$ = new CTarnFWCmdGetLBStat($5)); }
    ;

Cmd_Config:
    CONFIG DEVICE STRING Optional_Save_to  /* 137 */
      { TRY($$ = setChannel(parse, FW_IO_IOCTL, *$3, *$4)); }
  | CONFIG FILE STRING Optional_Save_to  /* 138 */
      { TRY($$ = setChannel(parse, FW_IO_FILE, *$3, *$4)); }
  | CONFIG SOCKET Single_IP_Port Optional_Save_to  /* 139 */
      { TRY($$ = setChannel(parse, FW_IO_SOCKET, $3, *$4)); }
  | CONFIG RIBS Single_IP_Port Optional_Save_to  /* 140 */
      { TRY($$ = setChannel(parse, FW_IO_RIBS, $3, *$4)); }
  | CONFIG DEFAULT AGENT STRING AND DVS_Port  /* 141 */
      { setDefaultSelector(*$4, *$6); $$ = nullptr; }
  | ENABLE STRING STRICT Optional_DVS_Port  /* 142 */
      { TRY($$ = configTCPStrict($4, *$2, true).release()); }
  | DISABLE STRING STRICT Optional_DVS_Port  /* 143 */
      { TRY($$ = configTCPStrict($4, *$2, false).release()); }
  | DESCRIBE STRING STRICT Optional_DVS_Port  /* 144 */
      { TRY($$ = getTCPStrict($4, *$2).release()); }
  | SET TIMEOUT STRING TO NUMBER Optional_DVS_Port  /* 145 */
      { TRY($$ = setTimeout($6, *$3, $5).release()); }
  | SET TIMEOUT TO STRING Optional_DVS_Port  /* 146 */
      { TRY($$ = setTimeouts($5, *$4).release()); }
  | DESCRIBE TIMEOUT STRING Optional_DVS_Port  /* 147 */
      { TRY($$ = new CTarnFWCmdGetTimeout($4, $3->data)); }
  | DESCRIBE TIMEOUT Optional_DVS_Port  /* 148 */
      { TRY($$ = getTimeouts($3).release()); }
  | ENABLE SHARED ADDRSET Optional_DVS_Port  /* 149 */
      { TRY($$ = new CTarnFWCmdConfigSharedAddrSet($4, true)); }
  | DISABLE SHARED ADDRSET Optional_DVS_Port  /* 150 */
      { TRY($$ = new CTarnFWCmdConfigSharedAddrSet($4, false)); }
  | DESCRIBE SHARED ADDRSET Optional_DVS_Port  /* 151 */
      { TRY($$ = new CTarnFWCmdGetSharedAddrSet($4)); }
    ;

Cmd_Debug:
    DEBUG STRING NUMBER Optional_DVS_Port  /* 152 */
      { TRY($$ = debug($4, *$2, $3).release()); }
    ;

Single_IP_Address:
    IPV4  /* 153 */
      { TRY($$ = ipv4Address(parse, *$1).release()); }
  | IPV6  /* 154 */
      { TRY($$ = ipv6Address(parse, *$1).release()); }
    ;

Single_IP_Port:
    IPV4_PORT  /* 155 */
      { $$ = ipPort(*$1); }
    ;

IP_Address:
    Single_IP_Address  /* 156 */
  | IPV4_CIDR  /* 157 */  { TRY($$ = ipv4Block(parse, *$1).release()); }
  | IPV4_MASK  /* 158 */  { TRY($$ = ipv4Block(parse, *$1).release()); }
  | IPV4_RANGE  /* 159 */  { TRY($$ = ipv4Range(parse, $1).release()); }
  | IPV6_CIDR  /* 160 */  { TRY($$ = ipv6Block(parse, *$1).release()); }
  | IPV6_RANGE  /* 161 */  { TRY($$ = ipv6Range(parse, *$1).release()); }
    ;

Single_IP_Address_Or_Any:
    Single_IP_Address  /* 162 */
  | ANY  /* 163 */
      { TRY($$ = parse.make<CTarnFWAddressAny>().release()); }
    ;

Single_IP_Or_Any_Port:
    Single_IP_Port  /* 164 */
  | ANY_PORT  /* 165 */
      { TRY($$ = anyPort(*$1)); }
    ;

IP_Address_Or_Any:
    IP_Address  /* 166 */
  | ANY  /* 167 */
      { TRY($$ = parse.make<CTarnFWAddressAny>().release()); }
    ;

IP_List:
    IP_Address  /* 168 */
      { TRY($$ = appended(parse, {}, own($1)).release()); }
  | IP_List COMMA IP_Address  /* 169 */
      { TRY($$ = appended(parse, own($1), own($3)).release()); }
    ;

Single_IP_Or_List:
    IP_Address_Or_Any  /* 170 */
      { TRY($$ = appendedPlain(parse, {}, own($1)).release()); }
  | LBRACE IP_List RBRACE  /* 171 */
      { $$ = $2; }
  | LBRACE IP_List COMMA RBRACE  /* 172 */
      { $$ = $2; }
  | LBRACE RBRACE  /* 173 */
      { TRY($$ = emptyList(parse).release()); }
    ;

MAC_Address:
    Single_MAC_Address  /* 174 */
  | ETHER_RANGE  /* 175 */
      { TRY($$ = etherRange(parse, *$1).release()); }
  | ETHER_MASK  /* 176 */
      { TRY($$ = etherMask(parse, *$1).release()); }
    ;

Single_MAC_Address:
    ETHER  /* 177 */
      { TRY($$ = etherAddress(parse, $1).release()); }
    ;

MAC_List:
    MAC_Address  /* 178 */
      { TRY($$ = appendedPlain(parse, {}, own($1)).release()); }
  | MAC_List COMMA MAC_Address  /* 179 */
      { TRY($$ = appendedPlain(parse, own($1), own($3)).release()); }
    ;

Single_MAC_Or_List:
    MAC_Address  /* 180 */
      { TRY($$ = appendedPlain(parse, {}, own($1)).release()); }
  | LBRACE MAC_List RBRACE  /* 181 */
      { $$ = $2; }
  | LBRACE MAC_List COMMA RBRACE  /* 182 */
      { $$ = $2; }
    ;

Attribute_Obj:
    Single_Attribute_Obj  /* 183 */
    ;

Single_Attribute_Obj:
    STRING  /* 184 */
      { TRY($$ = attribute(*$1).release()); }
    ;

Attribute_List:
    Attribute_Obj  /* 185 */
      { TRY($$ = appendedPlain(parse, {}, own($1)).release()); }
  | Attribute_List COMMA Attribute_Obj  /* 186 */
      { TRY($$ = appendedPlain(parse, own($1), own($3)).release()); }
    ;

Single_Attribute_Or_List:
    Attribute_Obj  /* 187 */
      { TRY($$ = appendedPlain(parse, {}, own($1)).release()); }
  | LBRACE Attribute_List RBRACE  /* 188 */
      { $$ = $2; }
  | LBRACE Attribute_List COMMA RBRACE  /* 189 */
      { $$ = $2; }
    ;

Optional_Single_Attribute_Or_List:
    %empty  /* 190 */
      { $$ = nullptr; }
  | WITH Single_Attribute_Or_List  /* 191 */
      { $$ = $2; }
    ;

L7AttrStringValueList:
    STRING  /* 192 */
      { TRY($$ = withValue({}, *$1).release()); }
  | L7AttrStringValueList COMMA STRING  /* 193 */
      { TRY($$ = withValue(own($1), *$3).release()); }
    ;

L7AttrIntValueList:
    NUMBER  /* 194 */
      { TRY($$ = withValue({}, $1).release()); }
  | L7AttrIntValueList COMMA NUMBER  /* 195 */
      { TRY($$ = withValue(own($1), $3).release()); }
    ;

L7AttrUUIDValue:
    STRING UUID STRING  /* 196 */
      { TRY($$ = namedUuid(parse, *$1, *$3)); }
  | UUID STRING  /* 197 */
      { TRY($$ = namedUuid(parse, kNoText, *$2)); }
    ;

L7AttrUUIDValueList:
    L7AttrUUIDValue  /* 198 */
      { TRY($$ = withValue({}, *$1).release()); }
  | L7AttrUUIDValueList COMMA L7AttrUUIDValue  /* 199 */
      { TRY($$ = withValue(own($1), *$3).release()); }
    ;

L7AttributeList:
    LBRACKET STRING COLON L7AttrStringValueList RBRACKET  /* 200 */
      { TRY($$ = l7Attributes(*$2, own($4)).release()); }
  | LBRACKET STRING COLON L7AttrIntValueList RBRACKET  /* 201 */
      { TRY($$ = l7Attributes(*$2, own($4)).release()); }
  | LBRACKET STRING COLON L7AttrUUIDValueList RBRACKET  /* 202 */
      { TRY($$ = l7Attributes(*$2, own($4)).release()); }
    ;

Single_L7Attribute_Or_List:
    L7AttributeList  /* 203 */
  | Single_L7Attribute_Or_List COMMA L7AttributeList  /* 204 */
      { TRY($$ = joined(own($1), own($3)).release()); }
    ;

Optional_ConnSpec:
    %empty  /* 205 */
      { $$ = nullptr; }
  | Single_IP_Address NUMBER Single_IP_Address NUMBER STRING STRING  /* 206 */
      { TRY($$ = connectionSpec(parse, {own($1), $2}, {own($3), $4}, *$5, *$6)); }
    ;

Optional_StateID:
    %empty  /* 207 */
      { $$ = 0; }
  | NUMBER  /* 208 */
    ;

DVS_Port:
    DVSPORT ID_PORT  /* 209 */
      { TRY($$ = selectorOfIdPort(parse, FW_SELECTOR_DVSPORT, *$2)); }
  | DVSPORT STRING  /* 210 */
      { TRY($$ = selectorOfVnic(parse, FW_SELECTOR_DVSPORT, *$2)); }
  | DVSWITCH STRING PORT NUMBER  /* 211 */
      { TRY($$ = selectorOfSwitch(parse, *$2, $4)); }
  | VNIC ID_PORT  /* 212 */
      { TRY($$ = selectorOfIdPort(parse, FW_SELECTOR_VNIC, *$2)); }
  | VNIC STRING  /* 213 */
      { TRY($$ = selectorOfVnic(parse, FW_SELECTOR_VNIC, *$2)); }
  | FILTER STRING  /* 214 */
      { TRY($$ = selectorOfFilter(parse, *$2)); }
  | VIF STRING  /* 215 */
      { TRY($$ = selectorOfVif(parse, *$2)); }
    ;

Optional_DVS_Port:
    %empty  /* 216 */
      { TRY($$ = defaultSelector(parse)); }
  | OF DVS_Port  /* 217 */
      { $$ = $2; }
  | TO DVS_Port  /* 218 */
      { $$ = $2; }
    ;

Single_Connection:
    FROM Single_IP_Address_Or_Any PORT NUMBER TO Single_IP_Address_Or_Any PORT NUMBER  /* 219 */
      { TRY($$ = connection(parse, {own($2), $4}, {own($6), $8})); }
  | FROM Single_IP_Or_Any_Port TO Single_IP_Or_Any_Port  /* 220 */
      { TRY($$ = connection(parse, $2, $4)); }
    ;

Connection_List:
    Single_Connection  /* 221 */
      { TRY($$ = withConnection({}, *$1).release()); }
  | Connection_List COMMA Single_Connection  /* 222 */
      { TRY($$ = withConnection(own($1), *$3).release()); }
    ;

ID_List:
    NUMBER  /* 223 */
      { TRY($$ = withID(std::make_unique<CTarnFWIDList>(), $1).release()); }
  | ID_List COMMA NUMBER  /* 224 */
      { TRY($$ = withID(own($1), $3).release()); }
    ;

Single_ID_Or_List:
    NUMBER  /* 225 */
      { TRY($$ = withID(std::make_unique<CTarnFWIDList>(), $1).release()); }
  | LBRACE ID_List RBRACE  /* 226 */
      { $$ = $2; }
  | LBRACE ID_List COMMA RBRACE  /* 227 */
      { $$ = $2; }
    ;

Rule_List:
    Single_Rule SEMICOLON  /* 228 */
      { TRY($$ = withRule({}, own($1)).release()); }
  | Rule_List Single_Rule SEMICOLON  /* 229 */
      { TRY($$ = withRule(own($1), own($2)).release()); }
    ;

Set_of_Rules:
    LBRACE Rule_List RBRACE  /* 230 */
      { $$ = $2; }
    ;

Rule_Position:
    %empty  /* 231 */
      { $$ = 0; }
  | AT NUMBER  /* 232 */
      { $$ = $2; }
    ;

Single_Rule:
    RULE NUMBER Rule_Position Rule_Direction Optional_Rule_AF Rule_Protocol Optional_Protocol_Spec
    Src_Addr_Spec Optional_Port_Spec Dst_Addr_Spec Optional_Port_Spec Optional_ExtSrc_Profile_Spec
    Optional_Attribute_Profile_Spec Rule_Action Optional_Rule_Tag  /* 233 */
    { TRY($$ = buildRule(parse, $1, {.id = $2,
                                     .position = $3,
                                     .direction = $4,
                                     .af = $5,
                                     .protocol = $6,
                                     .connection = own($7),
                                     .source = own($8),
                                     .sourcePorts = own($9),
                                     .destination = own($10),
                                     .destinationPorts = own($11),
                                     .extendedSource = own($12),
                                     .attributeProfile = own($13),
                                     .action = own($14),
                                     .tag = *$15}).release()); }
    ;

Optional_Protocol_Spec:
    %empty  /* 234 */
      { $$ = nullptr; }
  | Protocol_Spec  /* 235 */
    ;

Rule_Direction:
    INOUT  /* 236 */
      { $$ = FW_DIRECTION_INOUT; }
  | IN  /* 237 */
      { $$ = FW_DIRECTION_IN; }
  | OUT  /* 238 */
      { $$ = FW_DIRECTION_OUT; }
    ;

Optional_Rule_AF:
    %empty  /* 239 */
      { $$ = FW_AF_NONE; }
  | INET  /* 240 */
      { $$ = FW_AF_INET; }
  | INET6  /* 241 */
      { $$ = FW_AF_INET6; }
    ;

Optional_Rule_Tag:
    %empty  /* 242 */
      { $$ = &kNoText; }
  | TAG STRING  /* 243 */
      { $$ = $2; }
    ;

Rule_Protocol:
    PROTOCOL ANY  /* 244 */
      { $$ = {FWProtocolLayer::ip, 0, false, false}; }
  | PROTOCOL STRING  /* 245 */
      { TRY($$ = protocolOfName(parse, *$2, false)); }
  | NOT PROTOCOL STRING  /* 246 */
      { TRY($$ = protocolOfName(parse, *$3, true)); }
  | PROTOCOL NUMBER  /* 247 */
      { TRY($$ = protocolOfNumber($2, false)); }
  | NOT PROTOCOL NUMBER  /* 248 */
      { TRY($$ = protocolOfNumber($3, true)); }
  | ETHERTYPE ANY  /* 249 */
      { $$ = {FWProtocolLayer::ethernet, 0, false, false}; }
  | ETHERTYPE NUMBER  /* 250 */
      { TRY($$ = etherType($2, false)); }
  | NOT ETHERTYPE NUMBER  /* 251 */
      { TRY($$ = etherType($3, true)); }
    ;

Src_Addr_Spec:
    FROM Address_Spec  /* 252 */
      { $$ = $2; }
    ;

Dst_Addr_Spec:
    TO Address_Spec  /* 253 */
      { $$ = $2; }
    ;

Address_Spec:
    ANY  /* 254 */  { TRY($$ = parse.make<CTarnFWAddressAny>().release()); }
  | IP IP_Address  /* 255 */  { $$ = $2; }
  | IP_Address  /* 256 */
  | MAC MAC_Address  /* 257 */  { $$ = $2; }
  | MAC_Address  /* 258 */
  | ADDRSET STRING  /* 259 */  { TRY($$ = addressSet(parse, *$2).release()); }
  | STRING  /* 260 */  { TRY($$ = addressSet(parse, *$1).release()); }
  | NOT IP IP_Address  /* 261 */  { $$ = negated($3); }
  | NOT IP_Address  /* 262 */  { $$ = negated($2); }
  | NOT MAC MAC_Address  /* 263 */  { $$ = negated($3); }
  | NOT MAC_Address  /* 264 */  { $$ = negated($2); }
  | NOT ADDRSET STRING  /* 265 */  { TRY($$ = negated(addressSet(parse, *$3).release())); }
  | NOT STRING  /* 266 */  { TRY($$ = negated(addressSet(parse, *$2).release())); }
    ;

Optional_Port_Spec:
    %empty  /* 267 */
      { $$ = nullptr; }
  | Single_Port_Spec  /* 268 */
    ;

Optional_ExtSrc_Profile_Spec:
    %empty  /* 269 */
      { $$ = nullptr; }
  | EXTSRCPROFILE STRING  /* 270 */
      { TRY($$ = containerID(parse, *$2).release()); }
    ;

Optional_Attribute_Profile_Spec:
    %empty  /* 271 */
      { $$ = nullptr; }
  | ATTRPROFILE STRING  /* 272 */
      { TRY($$ = containerID(parse, *$2).release()); }
    ;

Single_Port_Spec:
    PORT NUMBER  /* 273 */
      { TRY($$ = port(parse, $2, false).release()); }
  | PORT NUMBER_RANGE  /* 274 */
      { TRY($$ = portRange(parse, $2, false).release()); }
  | PORT LBRACE L4_Port_List RBRACE  /* 275 */
      { $$ = $3; }
  | PORT LBRACE L4_Port_List COMMA RBRACE  /* 276 */
      { $$ = $3; }
  | NOT PORT NUMBER  /* 277 */
      { TRY($$ = port(parse, $3, true).release()); }
  | NOT PORT NUMBER_RANGE  /* 278 */
      { TRY($$ = portRange(parse, $3, true).release()); }
  | NOT PORT LBRACE L4_Port_List RBRACE  /* 279 */
      { $$ = $4; $4->setNegated(true); }
  | NOT PORT LBRACE L4_Port_List COMMA RBRACE  /* 280 */
      { $$ = $4; $4->setNegated(true); }
    ;

Protocol_Spec:
    Single_Proto_Spec  /* 281 */
      { TRY($$ = withSpec(parse, {}, own($1)).release()); }
  | WITH LBRACE Proto_Spec_List RBRACE  /* 282 */
      { $$ = $3; }
  | WITH LBRACE Proto_Spec_List COMMA RBRACE  /* 283 */
      { $$ = $3; }
    ;

Proto_Spec_List:
    Single_Proto_Spec  /* 284 */
      { TRY($$ = withSpec(parse, {}, own($1)).release()); }
  | Proto_Spec_List COMMA Single_Proto_Spec  /* 285 */
      { TRY($$ = withSpec(parse, own($1), own($3)).release()); }
    ;

Single_Proto_Spec:
    STATELESS  /* 286 */
      { TRY($$ = parse.make<CTarnFWProtocolSpecStateless>().release()); }
  | STRICT  /* 287 */
      { TRY($$ = parse.make<CTarnFWProtocolSpecStrict>().release()); }
  | SLOPPY  /* 288 */
      { TRY($$ = parse.make<CTarnFWProtocolSpecSloppy>().release()); }
  | DSCP STRING  /* 289 */
      { TRY($$ = dscpOfText(parse, *$2).release()); }
  | DSCP NUMBER  /* 290 */
      { TRY($$ = dscpOfNumber(parse, $2).release()); }
  | FLAG Single_TCP_Flag_Or_List  /* 291 */
      { TRY($$ = parse.make<CTarnFWProtocolSpecTCPFlags>(FW_SPEC_DIR_BOTH, $2, false).release()); }
  | OPTION STRING  /* 292 */
      { TRY($$ = tcpOptions(parse, *$2, false).release()); }
  | ICMPTYPE NUMBER  /* 293 */
      { TRY($$ = icmpType(parse, $2, false).release()); }
  | TYPECODE NUMBER_RANGE  /* 294 */
      { TRY($$ = icmpTypeCode(parse, $2, false).release()); }
  | NOT FLAG Single_TCP_Flag_Or_List  /* 295 */
      { TRY($$ = parse.make<CTarnFWProtocolSpecTCPFlags>(FW_SPEC_DIR_BOTH, $3, true).release()); }
  | NOT OPTION STRING  /* 296 */
      { TRY($$ = tcpOptions(parse, *$3, true).release()); }
  | NOT ICMPTYPE NUMBER  /* 297 */
      { TRY($$ = icmpType(parse, $3, true).release()); }
  | NOT TYPECODE NUMBER_RANGE  /* 298 */
      { TRY($$ = icmpTypeCode(parse, $3, true).release()); }
    ;

L4_Port_List:
    NUMBER  /* 299 */
      { TRY($$ = withPort(portSet(parse), $1).release()); }
  | NUMBER_RANGE  /* 300 */
      { TRY($$ = withPorts(portSet(parse), $1).release()); }
  | L4_Port_List COMMA NUMBER  /* 301 */
      { TRY($$ = withPort(own($1), $3).release()); }
  | L4_Port_List COMMA NUMBER_RANGE  /* 302 */
      { TRY($$ = withPorts(own($1), $3).release()); }
    ;

Single_TCP_Flag_Or_List:
    TCP_Flag  /* 303 */
  | LBRACE TCP_Flag_List RBRACE  /* 304 */
      { $$ = $2; }
  | LBRACE TCP_Flag_List COMMA RBRACE  /* 305 */
      { $$ = $2; }
    ;

TCP_Flag_List:
    TCP_Flag  /* 306 */
  | TCP_Flag_List COMMA TCP_Flag  /* 307 */
      { $$ = $1 | $3; }
    ;

TCP_Flag:
    NUMBER  /* 308 */  { TRY($$ = tcpFlags($1)); }
  | SYN  /* 309 */  { $$ = FW_TCP_SYN; }
  | FIN  /* 310 */  { $$ = FW_TCP_FIN; }
  | RST  /* 311 */  { $$ = FW_TCP_RST; }
  | PSH  /* 312 */  { $$ = FW_TCP_PSH; }
  | ACK  /* 313 */  { $$ = FW_TCP_ACK; }
  | URG  /* 314 */  { $$ = FW_TCP_URG; }
  | ECE  /* 315 */  { $$ = FW_TCP_ECE; }
  | CWR  /* 316 */  { $$ = FW_TCP_CWR; }
  | NS  /* 317 */  { $$ = FW_TCP_NS; }
    ;

Optional_Rule_Action_Flag:
    %empty  /* 318 */
      { $$ = {0, 0}; }
  | With_Rule_Action_Flag  /* 319 */
  | As_Dynamic_App  /* 320 */
  | With_Rule_Action_Flag As_Dynamic_App  /* 321 */
      { $$ = {static_cast<std::uint16_t>($1.flags | $2.flags), $2.application}; }
    ;

With_Rule_Action_Flag:
    WITH LOG  /* 322 */  { $$ = {kActionLog, 0}; }
  | WITH COPY  /* 323 */  { $$ = {kActionCopy, 0}; }
  | WITH NOFLOW  /* 324 */  { $$ = {kActionNoFlow, 0}; }
  | WITH RTT  /* 325 */  { $$ = {kActionRtt, 0}; }
  | WITH LBRULE  /* 326 */  { $$ = {kActionLBRule, 0}; }
  | WITH LBRACE Rule_Action_Flag_List RBRACE  /* 327 */  { $$ = {$3, 0}; }
  | WITH LBRACE Rule_Action_Flag_List COMMA RBRACE  /* 328 */  { $$ = {$3, 0}; }
    ;

Rule_Action_Flag_List:
    LOG  /* 329 */
      { $$ = kActionLog; }
  | COPY  /* 330 */
      { $$ = kActionCopy; }
  | NOFLOW  /* 331 */
      { $$ = kActionNoFlow; }
  | RTT  /* 332 */
      { $$ = kActionRtt; }
  | LBRULE  /* 333 */
      { $$ = kActionLBRule; }
  | Rule_Action_Flag_List COMMA LOG  /* 334 */
      { $$ = withActionFlag($1, kActionLog, "log"); }
  | Rule_Action_Flag_List COMMA COPY  /* 335 */
      { $$ = withActionFlag($1, kActionCopy, "copy"); }
  | Rule_Action_Flag_List COMMA NOFLOW  /* 336 */
      { $$ = withActionFlag($1, kActionNoFlow, "noflow"); }
  | Rule_Action_Flag_List COMMA RTT  /* 337 */
      { $$ = withActionFlag($1, kActionRtt, "rtt"); }
  | Rule_Action_Flag_List COMMA LBRULE  /* 338 */
      { $$ = withActionFlag($1, kActionLBRule, "lbrule"); }
    ;

As_Dynamic_App:
    AS FTP  /* 339 */  { $$ = {kActionDynamic, FW_DYNAMIC_FTP}; }
  | AS ORACLE  /* 340 */  { $$ = {kActionDynamic, FW_DYNAMIC_ORACLE}; }
  | AS SUNRPC  /* 341 */  { $$ = {kActionDynamic, FW_DYNAMIC_SUNRPC}; }
  | AS DCERPC  /* 342 */  { $$ = {kActionDynamic, FW_DYNAMIC_DCERPC}; }
    ;

Rule_Action:
    Single_Rule_Action Optional_Rule_Action_Flag  /* 343 */
      { TRY($$ = flaggedAction(own($1), $2).release()); }
    ;

LB_Type:
    LB_L4  /* 344 */
      { $$ = 0; }
  | LB_L7  /* 345 */
      { $$ = 1; }
    ;

Key_Policy:
    KEYPOLICY STRING  /* 346 */
      { TRY($$ = keyPolicy(parse, *$2)); }
    ;

Pool_Option:
    ROUND_ROBIN  /* 347 */
      { $$ = FW_POOL_ROUND_ROBIN; }
  | RANDOM  /* 348 */
      { $$ = FW_POOL_RANDOM; }
  | TCP_CONN_BALANCE  /* 349 */
      { $$ = FW_POOL_TCP_CONN_BALANCE; }
    ;

Optional_Persist_Timeout:
    { }  /* 351; the action in front of the empty form is 350 */
      { $$ = 0; }
  | NUMBER  /* 352 */
      { $$ = static_cast<std::uint16_t>($1); }
    ;

Export_Version:
    NUMBER  /* 353 */
      { TRY($$ = number32($1, "export version value overflows")); }
    ;

Single_Rule_Action:
    DROP  /* 354 */
      { TRY($$ = parse.make<CTarnFWRuleActionDrop>().release()); }
  | ACCEPT  /* 355 */
      { TRY($$ = parse.make<CTarnFWRuleActionAccept>().release()); }
  | ENCRYPT Key_Policy  /* 356 */
      { TRY($$ = parse.make<CTarnFWRuleActionEncrypt>($2->data).release()); }
  | CLEAR  /* 357 */
      { TRY($$ = parse.make<CTarnFWRuleActionClear>().release()); }
  | REJECT  /* 358 */
      { TRY($$ = parse.make<CTarnFWRuleActionReject>().release()); }
  | PUNT  /* 359 */
      { TRY($$ = parse.make<CTarnFWRuleActionPunt>().release()); }
  | PBR Key_Policy  /* 360 */
      { TRY($$ = parse.make<CTarnFWRuleActionPbr>($2->data).release()); }
  | COPY  /* 361 */
      { TRY($$ = parse.make<CTarnFWRuleActionCopy>().release()); }
  | JUMPTO STRING  /* 362 */
      { TRY($$ = parse.make<CTarnFWRuleActionJumpto>($2->data).release()); }
  | DIVERT  /* 363 */
      { TRY($$ = parse.make<CTarnFWRuleActionDivert>().release()); }
  | MACREWRITE ETHER  /* 364 */
      { TRY($$ = macRewrite(parse, $2).release()); }
  | SNAT ADDRSET STRING  /* 365 */
      { TRY($$ = snat(parse, addressSet(parse, *$3)).release()); }
  | SNAT IP IP_Address  /* 366 */
      { TRY($$ = snat(parse, own($3)).release()); }
  | DNAT ADDRSET STRING PORT NUMBER  /* 367 */
      { TRY($$ = dnatToPort(parse, addressSet(parse, *$3), $5).release()); }
  | DNAT ADDRSET STRING PORT NUMBER_RANGE POOLOPT Pool_Option Optional_Persist_Timeout  /* 368 */
      { TRY($$ = dnatToPoolPorts(parse, addressSet(parse, *$3), $5, $7, $8).release()); }
  | DNAT ADDRSET STRING PORT NUMBER_RANGE  /* 369 */
      { TRY($$ = dnatToPorts(parse, addressSet(parse, *$3), $5).release()); }
  | DNAT ADDRSET STRING POOLOPT Pool_Option Optional_Persist_Timeout  /* 370 */
      { TRY($$ = dnatToPool(parse, addressSet(parse, *$3), $5, $6).release()); }
  | DNAT ADDRSET STRING  /* 371 */
      { TRY($$ = dnat(parse, addressSet(parse, *$3)).release()); }
  | DNAT IP IP_Address PORT NUMBER_RANGE  /* 372 */
      { TRY($$ = dnatToPorts(parse, own($3), $5).release()); }
  | DNAT IP IP_Address PORT NUMBER  /* 373 */
      { TRY($$ = dnatToPort(parse, own($3), $5).release()); }
  | DNAT IP IP_Address  /* 374 */
      { TRY($$ = dnat(parse, own($3)).release()); }
  | LB LBTYPE LB_Type  /* 375 */
      { TRY($$ = loadBalancing(parse, $3, 0, 0, nullptr).release()); }
  | LB LBTYPE LB_Type LBIDLETIMEOUT NUMBER  /* 376 */
      { TRY($$ = loadBalancing(parse, $3, $5, 0, nullptr).release()); }
  | LB LBTYPE LB_Type LBCLOSETIMEOUT NUMBER  /* 377 */
      { TRY($$ = loadBalancing(parse, $3, 0, $5, nullptr).release()); }
  | LB LBTYPE LB_Type LBIDLETIMEOUT NUMBER LBCLOSETIMEOUT NUMBER  /* 378 */
      { TRY($$ = loadBalancing(parse, $3, $5, $7, nullptr).release()); }
  | LB LBTYPE LB_Type LBIDLETIMEOUT NUMBER LBOPTIONS STRING  /* 379 */
      { TRY($$ = loadBalancing(parse, $3, $5, 0, $7->data).release()); }
  | LB LBTYPE LB_Type LBCLOSETIMEOUT NUMBER LBOPTIONS STRING  /* 380 */
      { TRY($$ = loadBalancing(parse, $3, 0, $5, $7->data).release()); }
  | LB LBTYPE LB_Type LBIDLETIMEOUT NUMBER LBCLOSETIMEOUT NUMBER LBOPTIONS STRING  /* 381 */
      { TRY($$ = loadBalancing(parse, $3, $5, $7, $9->data).release()); }
  | LB LBTYPE LB_Type LBOPTIONS STRING  /* 382 */
      { TRY($$ = loadBalancing(parse, $3, 0, 0, $5->data).release()); }
    ;

Optional_Save_to:
    %empty  /* 383 */
      { $$ = &kNoText; }
  | SAVE TO STRING  /* 384 */
      { $$ = $3; }
    ;

%%

int yyparse(FWStatus_t* status, void* scanner, const char* filename, CTarnFWCmdList** cmdList,
            CTarnFWCmdConfig** cmdConfig) {
  return yyparse({status, scanner, filename, cmdList, cmdConfig});
}

void yyerror(YYLTYPE*, FWStatus_t* status, void* scanner, const char* filename,
             CTarnFWCmdList** cmdList, CTarnFWCmdConfig** cmdConfig,
             const char* message) {
  const fw_lex_extra_* extra = yyget_extra(scanner);
  if (extra->status != FW_STATUS_OK) {
    *status = extra->status;
    message = extra->message;
  }
  TARNFW_ERROR("[%s:%d] %s\n", filename == nullptr ? "" : filename, yyget_lineno(scanner),
               message);
  if (*status == FW_STATUS_OK) *status = FW_STATUS_PARSING_ERROR;
  dropParseResults({status, scanner, filename, cmdList, cmdConfig});
}
