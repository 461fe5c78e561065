/* Grammar of the configuration language.
 *
 * The order of the tokens and of the productions is fixed: a token's code is 255 plus its position,
 * a token's name is what syntax messages print, and the number behind a production is its number
 * in the generated parser. The grammar has no conflict. No production takes the error token: the
 * first error ends the parse.
 */

%require "3.8"
%language "c"
%define api.pure full
%define api.token.prefix {TK_}
%define parse.error verbose
%locations
%expect 0

%parse-param {TarnFirewall::FWStatus_t* status} {void* scanner} {const char* filename}
%parse-param {TarnFirewall::CTarnFWCmdList** cmdList}
%parse-param {TarnFirewall::CTarnFWCmdConfig** cmdConfig}
%lex-param {void* scanner}

%code requires {
#include "TarnFWParserValues.h"

namespace TarnFirewall {
class CTarnFWCmdConfig;
class CTarnFWCmdList;
}  // namespace TarnFirewall
}

%code provides {
/// Reports a failure: the scanner's, if it has one, else `message`. Logs it with the place, gives
/// `*status` 16 ("parsing error") if it has none, and clears both results.
void yyerror(YYLTYPE* location, TarnFirewall::FWStatus_t* status, void* scanner,
             const char* filename, TarnFirewall::CTarnFWCmdList** cmdList,
             TarnFirewall::CTarnFWCmdConfig** cmdConfig, const char* message);
}

%code {
#include "TarnFWScanner.h"

/* The scanner fills no location, so that none is carried along. */
#define YYLLOC_DEFAULT(current, right, count) ((void)(right))
}

%union {
  TarnFirewall::FWParserText text;
  std::int64_t number;
  TarnFirewall::FWNumberRange numberRange;
  TarnFirewall::FWIPv4Range ipv4Range;
  TarnFirewall::FWIPv6Range* ipv6Range;  /* in the arena */
  TarnFirewall::FWEtherBytes ether;
  TarnFirewall::FWEtherPair etherPair;
  TarnFirewall::FWIdPort* idPort;        /* in the arena */
  TarnFirewall::CTarnFWParserArena::Mark mark;
}

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

%start Firewall

%%

Firewall:
    Rule_Cmd_List /* 2 */
    ;

Rule_Cmd_List:
    %empty /* 3 */
  | Rule_Cmd_List Rule_Command /* 4 */
    ;

Rule_Command:
    Cmd_Create_RuleSet SEMICOLON /* 5 */
  | Cmd_Get_Root_RuleSet SEMICOLON /* 6 */
  | Cmd_Set_Root_RuleSet SEMICOLON /* 7 */
  | Cmd_Clear_Root_RuleSet SEMICOLON /* 8 */
  | Cmd_Destroy_RuleSet SEMICOLON /* 9 */
  | Cmd_Destroy_All_RuleSet SEMICOLON /* 10 */
  | Cmd_Set_RuleSet_Jump SEMICOLON /* 11 */
  | Cmd_Get_RuleSet_Jump SEMICOLON /* 12 */
  | Cmd_Clear_RuleSet_Jump SEMICOLON /* 13 */
  | Cmd_Clear_RuleSet SEMICOLON /* 14 */
  | Cmd_Get_Rule_Count_Of_RuleSet SEMICOLON /* 15 */
  | Cmd_Get_RuleSet_Info SEMICOLON /* 16 */
  | Cmd_Get_Rule_Of_RuleSet SEMICOLON /* 17 */
  | Cmd_Get_Stat_Of_RuleSet SEMICOLON /* 18 */
  | Cmd_Get_RuleSet_Count SEMICOLON /* 19 */
  | Cmd_Get_RuleSet_List SEMICOLON /* 20 */
  | Cmd_Get_Connection_Count SEMICOLON /* 21 */
  | Cmd_Set_Connection_By_Filter SEMICOLON /* 22 */
  | Cmd_Set_Connection_By_List SEMICOLON /* 23 */
  | Cmd_Set_All_Connection SEMICOLON /* 24 */
  | Cmd_Get_Connection_Stat SEMICOLON /* 25 */
  | Cmd_Clear_All_Connection SEMICOLON /* 26 */
  | Cmd_Get_Exportver SEMICOLON /* 27 */
  | Cmd_Set_Exportver SEMICOLON /* 28 */
  | Cmd_Create_AddrSet SEMICOLON /* 29 */
  | Cmd_Clear_AddrSet SEMICOLON /* 30 */
  | Cmd_Destroy_AddrSet SEMICOLON /* 31 */
  | Cmd_Destroy_All_AddrSet SEMICOLON /* 32 */
  | Cmd_Get_AddrSet_Size SEMICOLON /* 33 */
  | Cmd_Get_AddrSet_Info SEMICOLON /* 34 */
  | Cmd_Get_Address_Of_AddrSet SEMICOLON /* 35 */
  | Cmd_Get_AddrSet_Count SEMICOLON /* 36 */
  | Cmd_Get_AddrSet_List SEMICOLON /* 37 */
  | Cmd_Get_AddrSet_Stat SEMICOLON /* 38 */
  | Cmd_Create_SpoofGuard SEMICOLON /* 39 */
  | Cmd_Delete_SpoofGuard SEMICOLON /* 40 */
  | Cmd_Check_SpoofGuard SEMICOLON /* 41 */
  | Cmd_Get_SpoofGuard_Stat SEMICOLON /* 42 */
  | Cmd_Get_Kif_Stat SEMICOLON /* 43 */
  | Cmd_Clear_Kif_Stat SEMICOLON /* 44 */
  | Cmd_Config SEMICOLON /* 45 */
  | Cmd_Debug SEMICOLON /* 46 */
  | Cmd_Create_AttrProfile SEMICOLON /* 47 */
  | Cmd_Delete_AttrProfile SEMICOLON /* 48 */
  | Cmd_Set_Connection_Attr SEMICOLON /* 49 */
  | Cmd_Add_Domain_IP_Map SEMICOLON /* 50 */
  | Cmd_Set_Uid2Sid_Mapping SEMICOLON /* 51 */
  | Cmd_Get_LB_Config SEMICOLON /* 52 */
  | Cmd_Get_LB_Stat SEMICOLON /* 53 */
    ;

Cmd_Create_RuleSet:
    CREATE RULESET STRING Optional_DVS_Port WITH Set_of_Rules /* 54 */
  | CREATE RULESET STRING Optional_DVS_Port Set_of_Rules /* 55 */
  | CREATE RULESET STRING Optional_DVS_Port JUMPTO STRING WITH Set_of_Rules /* 56 */
  | CREATE RULESET STRING Optional_DVS_Port WITH Single_Rule /* 57 */
  | CREATE RULESET STRING Optional_DVS_Port /* 58 */
    ;

Cmd_Get_Root_RuleSet:
    DESCRIBE ROOT RULESET Optional_DVS_Port /* 59 */
    ;

Cmd_Set_Root_RuleSet:
    SET ROOT RULESET STRING Optional_DVS_Port /* 60 */
  | SET ROOT RULESET STRING AND STRING Optional_DVS_Port /* 61 */
    ;

Cmd_Clear_Root_RuleSet:
    CLEAR ROOT RULESET Optional_DVS_Port /* 62 */
    ;

Cmd_Destroy_RuleSet:
    DESTROY RULESET STRING Optional_DVS_Port /* 63 */
    ;

Cmd_Destroy_All_RuleSet:
    DESTROY ALL RULESET Optional_DVS_Port /* 64 */
    ;

Cmd_Set_RuleSet_Jump:
    SET JUMPTO OF RULESET STRING AS STRING Optional_DVS_Port /* 65 */
    ;

Cmd_Get_RuleSet_Jump:
    DESCRIBE JUMPTO OF RULESET STRING Optional_DVS_Port /* 66 */
    ;

Cmd_Clear_RuleSet_Jump:
    CLEAR JUMPTO OF RULESET STRING Optional_DVS_Port /* 67 */
    ;

Cmd_Clear_RuleSet:
    CLEAR RULE OF RULESET STRING Optional_DVS_Port /* 68 */
    ;

Cmd_Get_Rule_Count_Of_RuleSet:
    DESCRIBE RULE COUNT OF RULESET STRING Optional_DVS_Port /* 69 */
  | DESCRIBE SNAT RULE COUNT OF RULESET STRING Optional_DVS_Port /* 70 */
  | DESCRIBE DNAT RULE COUNT OF RULESET STRING Optional_DVS_Port /* 71 */
    ;

Cmd_Get_RuleSet_Info:
    DESCRIBE INFO OF RULESET STRING Optional_DVS_Port /* 72 */
    ;

Cmd_Get_Rule_Of_RuleSet:
    DESCRIBE RULE OF RULESET STRING Optional_DVS_Port /* 73 */
  | DESCRIBE RULE OF RULESET STRING FROM NUMBER Optional_DVS_Port /* 74 */
  | DESCRIBE RULE OF RULESET STRING Optional_DVS_Port WITH Single_ID_Or_List /* 75 */
  | DESCRIBE SNAT RULE OF RULESET STRING Optional_DVS_Port /* 76 */
  | DESCRIBE SNAT RULE OF RULESET STRING FROM NUMBER Optional_DVS_Port /* 77 */
  | DESCRIBE SNAT RULE OF RULESET STRING Optional_DVS_Port WITH Single_ID_Or_List /* 78 */
  | DESCRIBE DNAT RULE OF RULESET STRING Optional_DVS_Port /* 79 */
  | DESCRIBE DNAT RULE OF RULESET STRING FROM NUMBER Optional_DVS_Port /* 80 */
  | DESCRIBE DNAT RULE OF RULESET STRING Optional_DVS_Port WITH Single_ID_Or_List /* 81 */
    ;

Cmd_Get_Stat_Of_RuleSet:
    DESCRIBE STAT OF RULESET STRING Optional_DVS_Port /* 82 */
  | DESCRIBE STAT OF RULESET STRING FROM NUMBER Optional_DVS_Port /* 83 */
  | DESCRIBE STAT OF RULESET STRING Optional_DVS_Port WITH Single_ID_Or_List /* 84 */
  | DESCRIBE SNAT STAT OF RULESET STRING Optional_DVS_Port /* 85 */
  | DESCRIBE SNAT STAT OF RULESET STRING FROM NUMBER Optional_DVS_Port /* 86 */
  | DESCRIBE SNAT STAT OF RULESET STRING Optional_DVS_Port WITH Single_ID_Or_List /* 87 */
  | DESCRIBE DNAT STAT OF RULESET STRING Optional_DVS_Port /* 88 */
  | DESCRIBE DNAT STAT OF RULESET STRING FROM NUMBER Optional_DVS_Port /* 89 */
  | DESCRIBE DNAT STAT OF RULESET STRING Optional_DVS_Port WITH Single_ID_Or_List /* 90 */
    ;

Cmd_Get_RuleSet_Count:
    DESCRIBE COUNT OF RULESET Optional_DVS_Port /* 91 */
    ;

Cmd_Get_RuleSet_List:
    DESCRIBE LIST OF RULESET Optional_DVS_Port /* 92 */
  | DESCRIBE LIST OF RULESET FROM NUMBER Optional_DVS_Port /* 93 */
    ;

Cmd_Get_Connection_Count:
    DESCRIBE CONNECTION COUNT Optional_DVS_Port /* 94 */
    ;

Cmd_Set_Connection_By_Filter:
    SET CONNECTION Optional_DVS_Port /* 95 */
    ;

Cmd_Set_Connection_By_List:
    SET CONNECTION Optional_DVS_Port WITH LBRACE Connection_List RBRACE /* 96 */
  | SET CONNECTION Optional_DVS_Port WITH Single_Connection /* 97 */
    ;

Cmd_Set_All_Connection:
    SET ALL CONNECTION Optional_DVS_Port /* 98 */
    ;

Cmd_Get_Connection_Stat:
    DESCRIBE CONNECTION STAT Optional_DVS_Port /* 99 */
  | DESCRIBE CONNECTION STAT FROM NUMBER Optional_DVS_Port /* 100 */
    ;

Cmd_Clear_All_Connection:
    CLEAR ALL CONNECTION Optional_DVS_Port /* 101 */
    ;

Cmd_Get_Exportver:
    DESCRIBE EXPORTVER Optional_DVS_Port /* 102 */
    ;

Cmd_Set_Exportver:
    SET EXPORTVER Export_Version Optional_DVS_Port /* 103 */
    ;

Cmd_Create_AttrProfile:
    CREATE ATTRPROFILE STRING Optional_DVS_Port WITH LBRACE Single_L7Attribute_Or_List RBRACE /* 104 */
    ;

Cmd_Delete_AttrProfile:
    DELETE ATTRPROFILE STRING Optional_DVS_Port /* 105 */
    ;

Cmd_Add_Domain_IP_Map:
    ADD DOMAIN2IP Optional_DVS_Port L7AttrUUIDValue WITH LBRACE Single_IP_Or_List RBRACE /* 106 */
    ;

Cmd_Set_Uid2Sid_Mapping:
    SET UID2SIDMAP Optional_DVS_Port STRING LBRACE L7AttrStringValueList RBRACE /* 107 */
    ;

Cmd_Set_Connection_Attr:
    SET CONNATTR Optional_DVS_Port Optional_ConnSpec Optional_StateID WITH LBRACE Single_L7Attribute_Or_List RBRACE /* 108 */
    ;

Cmd_Create_AddrSet:
    CREATE STRING ATTRSET { } STRING Optional_DVS_Port Optional_Single_Attribute_Or_List /* 110 */
  | CREATE ADDRSET STRING Optional_DVS_Port WITH Single_IP_Or_List /* 111 */
  | CREATE ADDRSET STRING Optional_DVS_Port WITH Single_MAC_Or_List /* 112 */
  | CREATE ADDRSET STRING Optional_DVS_Port Single_IP_Or_List /* 113 */
  | CREATE ADDRSET STRING Optional_DVS_Port Single_MAC_Or_List /* 114 */
  | CREATE ADDRSET STRING Optional_DVS_Port /* 115 */
    ;

Cmd_Clear_AddrSet:
    DELETE ALL FROM ADDRSET STRING Optional_DVS_Port /* 116 */
    ;

Cmd_Destroy_AddrSet:
    DESTROY ADDRSET STRING Optional_DVS_Port /* 117 */
    ;

Cmd_Destroy_All_AddrSet:
    DESTROY ALL ADDRSET Optional_DVS_Port /* 118 */
    ;

Cmd_Get_AddrSet_Size:
    DESCRIBE SIZE OF ADDRSET STRING Optional_DVS_Port /* 119 */
    ;

Cmd_Get_AddrSet_Info:
    DESCRIBE INFO OF ADDRSET STRING Optional_DVS_Port /* 120 */
    ;

Cmd_Get_AddrSet_Stat:
    DESCRIBE STAT OF ADDRSET Optional_DVS_Port /* 121 */
    ;

Cmd_Get_Address_Of_AddrSet:
    DESCRIBE ADDRESS OF ADDRSET STRING Optional_DVS_Port /* 122 */
  | DESCRIBE ADDRESS OF ADDRSET STRING FROM NUMBER Optional_DVS_Port /* 123 */
    ;

Cmd_Get_AddrSet_Count:
    DESCRIBE COUNT OF ADDRSET Optional_DVS_Port /* 124 */
    ;

Cmd_Get_AddrSet_List:
    DESCRIBE LIST OF ADDRSET Optional_DVS_Port /* 125 */
  | DESCRIBE LIST OF ADDRSET FROM NUMBER Optional_DVS_Port /* 126 */
    ;

Cmd_Create_SpoofGuard:
    CREATE SPOOFGUARD WITH IP Single_IP_Or_List AND MAC Single_MAC_Address Optional_DVS_Port /* 127 */
  | CREATE SPOOFGUARD WITH ADDRSET STRING AND MAC Single_MAC_Address Optional_DVS_Port /* 128 */
    ;

Cmd_Delete_SpoofGuard:
    DELETE SPOOFGUARD Optional_DVS_Port /* 129 */
  | DELETE SPOOFGUARD WITH MAC Single_MAC_Address Optional_DVS_Port /* 130 */
    ;

Cmd_Check_SpoofGuard:
    DESCRIBE SPOOFGUARD Optional_DVS_Port /* 131 */
    ;

Cmd_Get_SpoofGuard_Stat:
    DESCRIBE STAT OF SPOOFGUARD Optional_DVS_Port /* 132 */
    ;

Cmd_Get_Kif_Stat:
    DESCRIBE STAT OF KIF Optional_DVS_Port /* 133 */
    ;

Cmd_Clear_Kif_Stat:
    CLEAR STAT OF KIF Optional_DVS_Port /* 134 */
    ;

Cmd_Get_LB_Config:
    DESCRIBE CONFIG OF LB Optional_DVS_Port /* 135 */
    ;

Cmd_Get_LB_Stat:
    DESCRIBE STAT OF LB Optional_DVS_Port /* 136 */
    ;

Cmd_Config:
    CONFIG DEVICE STRING Optional_Save_to /* 137 */
  | CONFIG FILE STRING Optional_Save_to /* 138 */
  | CONFIG SOCKET Single_IP_Port Optional_Save_to /* 139 */
  | CONFIG RIBS Single_IP_Port Optional_Save_to /* 140 */
  | CONFIG DEFAULT AGENT STRING AND DVS_Port /* 141 */
  | ENABLE STRING STRICT Optional_DVS_Port /* 142 */
  | DISABLE STRING STRICT Optional_DVS_Port /* 143 */
  | DESCRIBE STRING STRICT Optional_DVS_Port /* 144 */
  | SET TIMEOUT STRING TO NUMBER Optional_DVS_Port /* 145 */
  | SET TIMEOUT TO STRING Optional_DVS_Port /* 146 */
  | DESCRIBE TIMEOUT STRING Optional_DVS_Port /* 147 */
  | DESCRIBE TIMEOUT Optional_DVS_Port /* 148 */
  | ENABLE SHARED ADDRSET Optional_DVS_Port /* 149 */
  | DISABLE SHARED ADDRSET Optional_DVS_Port /* 150 */
  | DESCRIBE SHARED ADDRSET Optional_DVS_Port /* 151 */
    ;

Cmd_Debug:
    DEBUG STRING NUMBER Optional_DVS_Port /* 152 */
    ;

Single_IP_Address:
    IPV4 /* 153 */
  | IPV6 /* 154 */
    ;

Single_IP_Port:
    IPV4_PORT /* 155 */
    ;

IP_Address:
    Single_IP_Address /* 156 */
  | IPV4_CIDR /* 157 */
  | IPV4_MASK /* 158 */
  | IPV4_RANGE /* 159 */
  | IPV6_CIDR /* 160 */
  | IPV6_RANGE /* 161 */
    ;

Single_IP_Address_Or_Any:
    Single_IP_Address /* 162 */
  | ANY /* 163 */
    ;

Single_IP_Or_Any_Port:
    Single_IP_Port /* 164 */
  | ANY_PORT /* 165 */
    ;

IP_Address_Or_Any:
    IP_Address /* 166 */
  | ANY /* 167 */
    ;

IP_List:
    IP_Address /* 168 */
  | IP_List COMMA IP_Address /* 169 */
    ;

Single_IP_Or_List:
    IP_Address_Or_Any /* 170 */
  | LBRACE IP_List RBRACE /* 171 */
  | LBRACE IP_List COMMA RBRACE /* 172 */
  | LBRACE RBRACE /* 173 */
    ;

MAC_Address:
    Single_MAC_Address /* 174 */
  | ETHER_RANGE /* 175 */
  | ETHER_MASK /* 176 */
    ;

Single_MAC_Address:
    ETHER /* 177 */
    ;

MAC_List:
    MAC_Address /* 178 */
  | MAC_List COMMA MAC_Address /* 179 */
    ;

Single_MAC_Or_List:
    MAC_Address /* 180 */
  | LBRACE MAC_List RBRACE /* 181 */
  | LBRACE MAC_List COMMA RBRACE /* 182 */
    ;

Attribute_Obj:
    Single_Attribute_Obj /* 183 */
    ;

Single_Attribute_Obj:
    STRING /* 184 */
    ;

Attribute_List:
    Attribute_Obj /* 185 */
  | Attribute_List COMMA Attribute_Obj /* 186 */
    ;

Single_Attribute_Or_List:
    Attribute_Obj /* 187 */
  | LBRACE Attribute_List RBRACE /* 188 */
  | LBRACE Attribute_List COMMA RBRACE /* 189 */
    ;

Optional_Single_Attribute_Or_List:
    %empty /* 190 */
  | WITH Single_Attribute_Or_List /* 191 */
    ;

L7AttrStringValueList:
    STRING /* 192 */
  | L7AttrStringValueList COMMA STRING /* 193 */
    ;

L7AttrIntValueList:
    NUMBER /* 194 */
  | L7AttrIntValueList COMMA NUMBER /* 195 */
    ;

L7AttrUUIDValue:
    STRING UUID STRING /* 196 */
  | UUID STRING /* 197 */
    ;

L7AttrUUIDValueList:
    L7AttrUUIDValue /* 198 */
  | L7AttrUUIDValueList COMMA L7AttrUUIDValue /* 199 */
    ;

L7AttributeList:
    LBRACKET STRING COLON L7AttrStringValueList RBRACKET /* 200 */
  | LBRACKET STRING COLON L7AttrIntValueList RBRACKET /* 201 */
  | LBRACKET STRING COLON L7AttrUUIDValueList RBRACKET /* 202 */
    ;

Single_L7Attribute_Or_List:
    L7AttributeList /* 203 */
  | Single_L7Attribute_Or_List COMMA L7AttributeList /* 204 */
    ;

Optional_ConnSpec:
    %empty /* 205 */
  | Single_IP_Address NUMBER Single_IP_Address NUMBER STRING STRING /* 206 */
    ;

Optional_StateID:
    %empty /* 207 */
  | NUMBER /* 208 */
    ;

DVS_Port:
    DVSPORT ID_PORT /* 209 */
  | DVSPORT STRING /* 210 */
  | DVSWITCH STRING PORT NUMBER /* 211 */
  | VNIC ID_PORT /* 212 */
  | VNIC STRING /* 213 */
  | FILTER STRING /* 214 */
  | VIF STRING /* 215 */
    ;

Optional_DVS_Port:
    %empty /* 216 */
  | OF DVS_Port /* 217 */
  | TO DVS_Port /* 218 */
    ;

Single_Connection:
    FROM Single_IP_Address_Or_Any PORT NUMBER TO Single_IP_Address_Or_Any PORT NUMBER /* 219 */
  | FROM Single_IP_Or_Any_Port TO Single_IP_Or_Any_Port /* 220 */
    ;

Connection_List:
    Single_Connection /* 221 */
  | Connection_List COMMA Single_Connection /* 222 */
    ;

ID_List:
    NUMBER /* 223 */
  | ID_List COMMA NUMBER /* 224 */
    ;

Single_ID_Or_List:
    NUMBER /* 225 */
  | LBRACE ID_List RBRACE /* 226 */
  | LBRACE ID_List COMMA RBRACE /* 227 */
    ;

Rule_List:
    Single_Rule SEMICOLON /* 228 */
  | Rule_List Single_Rule SEMICOLON /* 229 */
    ;

Set_of_Rules:
    LBRACE Rule_List RBRACE /* 230 */
    ;

Rule_Position:
    %empty /* 231 */
  | AT NUMBER /* 232 */
    ;

Single_Rule:
    RULE NUMBER Rule_Position Rule_Direction Optional_Rule_AF Rule_Protocol Optional_Protocol_Spec Src_Addr_Spec Optional_Port_Spec Dst_Addr_Spec Optional_Port_Spec Optional_ExtSrc_Profile_Spec Optional_Attribute_Profile_Spec Rule_Action Optional_Rule_Tag /* 233 */
    ;

Optional_Protocol_Spec:
    %empty /* 234 */
  | Protocol_Spec /* 235 */
    ;

Rule_Direction:
    INOUT /* 236 */
  | IN /* 237 */
  | OUT /* 238 */
    ;

Optional_Rule_AF:
    %empty /* 239 */
  | INET /* 240 */
  | INET6 /* 241 */
    ;

Optional_Rule_Tag:
    %empty /* 242 */
  | TAG STRING /* 243 */
    ;

Rule_Protocol:
    PROTOCOL ANY /* 244 */
  | PROTOCOL STRING /* 245 */
  | NOT PROTOCOL STRING /* 246 */
  | PROTOCOL NUMBER /* 247 */
  | NOT PROTOCOL NUMBER /* 248 */
  | ETHERTYPE ANY /* 249 */
  | ETHERTYPE NUMBER /* 250 */
  | NOT ETHERTYPE NUMBER /* 251 */
    ;

Src_Addr_Spec:
    FROM Address_Spec /* 252 */
    ;

Dst_Addr_Spec:
    TO Address_Spec /* 253 */
    ;

Address_Spec:
    ANY /* 254 */
  | IP IP_Address /* 255 */
  | IP_Address /* 256 */
  | MAC MAC_Address /* 257 */
  | MAC_Address /* 258 */
  | ADDRSET STRING /* 259 */
  | STRING /* 260 */
  | NOT IP IP_Address /* 261 */
  | NOT IP_Address /* 262 */
  | NOT MAC MAC_Address /* 263 */
  | NOT MAC_Address /* 264 */
  | NOT ADDRSET STRING /* 265 */
  | NOT STRING /* 266 */
    ;

Optional_Port_Spec:
    %empty /* 267 */
  | Single_Port_Spec /* 268 */
    ;

Optional_ExtSrc_Profile_Spec:
    %empty /* 269 */
  | EXTSRCPROFILE STRING /* 270 */
    ;

Optional_Attribute_Profile_Spec:
    %empty /* 271 */
  | ATTRPROFILE STRING /* 272 */
    ;

Single_Port_Spec:
    PORT NUMBER /* 273 */
  | PORT NUMBER_RANGE /* 274 */
  | PORT LBRACE L4_Port_List RBRACE /* 275 */
  | PORT LBRACE L4_Port_List COMMA RBRACE /* 276 */
  | NOT PORT NUMBER /* 277 */
  | NOT PORT NUMBER_RANGE /* 278 */
  | NOT PORT LBRACE L4_Port_List RBRACE /* 279 */
  | NOT PORT LBRACE L4_Port_List COMMA RBRACE /* 280 */
    ;

Protocol_Spec:
    Single_Proto_Spec /* 281 */
  | WITH LBRACE Proto_Spec_List RBRACE /* 282 */
  | WITH LBRACE Proto_Spec_List COMMA RBRACE /* 283 */
    ;

Proto_Spec_List:
    Single_Proto_Spec /* 284 */
  | Proto_Spec_List COMMA Single_Proto_Spec /* 285 */
    ;

Single_Proto_Spec:
    STATELESS /* 286 */
  | STRICT /* 287 */
  | SLOPPY /* 288 */
  | DSCP STRING /* 289 */
  | DSCP NUMBER /* 290 */
  | FLAG Single_TCP_Flag_Or_List /* 291 */
  | OPTION STRING /* 292 */
  | ICMPTYPE NUMBER /* 293 */
  | TYPECODE NUMBER_RANGE /* 294 */
  | NOT FLAG Single_TCP_Flag_Or_List /* 295 */
  | NOT OPTION STRING /* 296 */
  | NOT ICMPTYPE NUMBER /* 297 */
  | NOT TYPECODE NUMBER_RANGE /* 298 */
    ;

L4_Port_List:
    NUMBER /* 299 */
  | NUMBER_RANGE /* 300 */
  | L4_Port_List COMMA NUMBER /* 301 */
  | L4_Port_List COMMA NUMBER_RANGE /* 302 */
    ;

Single_TCP_Flag_Or_List:
    TCP_Flag /* 303 */
  | LBRACE TCP_Flag_List RBRACE /* 304 */
  | LBRACE TCP_Flag_List COMMA RBRACE /* 305 */
    ;

TCP_Flag_List:
    TCP_Flag /* 306 */
  | TCP_Flag_List COMMA TCP_Flag /* 307 */
    ;

TCP_Flag:
    NUMBER /* 308 */
  | SYN /* 309 */
  | FIN /* 310 */
  | RST /* 311 */
  | PSH /* 312 */
  | ACK /* 313 */
  | URG /* 314 */
  | ECE /* 315 */
  | CWR /* 316 */
  | NS /* 317 */
    ;

Optional_Rule_Action_Flag:
    %empty /* 318 */
  | With_Rule_Action_Flag /* 319 */
  | As_Dynamic_App /* 320 */
  | With_Rule_Action_Flag As_Dynamic_App /* 321 */
    ;

With_Rule_Action_Flag:
    WITH LOG /* 322 */
  | WITH COPY /* 323 */
  | WITH NOFLOW /* 324 */
  | WITH RTT /* 325 */
  | WITH LBRULE /* 326 */
  | WITH LBRACE Rule_Action_Flag_List RBRACE /* 327 */
  | WITH LBRACE Rule_Action_Flag_List COMMA RBRACE /* 328 */
    ;

Rule_Action_Flag_List:
    LOG /* 329 */
  | COPY /* 330 */
  | NOFLOW /* 331 */
  | RTT /* 332 */
  | LBRULE /* 333 */
  | Rule_Action_Flag_List COMMA LOG /* 334 */
  | Rule_Action_Flag_List COMMA COPY /* 335 */
  | Rule_Action_Flag_List COMMA NOFLOW /* 336 */
  | Rule_Action_Flag_List COMMA RTT /* 337 */
  | Rule_Action_Flag_List COMMA LBRULE /* 338 */
    ;

As_Dynamic_App:
    AS FTP /* 339 */
  | AS ORACLE /* 340 */
  | AS SUNRPC /* 341 */
  | AS DCERPC /* 342 */
    ;

Rule_Action:
    Single_Rule_Action Optional_Rule_Action_Flag /* 343 */
    ;

LB_Type:
    LB_L4 /* 344 */
  | LB_L7 /* 345 */
    ;

Key_Policy:
    KEYPOLICY STRING /* 346 */
    ;

Pool_Option:
    ROUND_ROBIN /* 347 */
  | RANDOM /* 348 */
  | TCP_CONN_BALANCE /* 349 */
    ;

Optional_Persist_Timeout:
    { } /* 351; the action in front of the empty form is 350 */
  | NUMBER /* 352 */
    ;

Export_Version:
    NUMBER /* 353 */
    ;

Single_Rule_Action:
    DROP /* 354 */
  | ACCEPT /* 355 */
  | ENCRYPT Key_Policy /* 356 */
  | CLEAR /* 357 */
  | REJECT /* 358 */
  | PUNT /* 359 */
  | PBR Key_Policy /* 360 */
  | COPY /* 361 */
  | JUMPTO STRING /* 362 */
  | DIVERT /* 363 */
  | MACREWRITE ETHER /* 364 */
  | SNAT ADDRSET STRING /* 365 */
  | SNAT IP IP_Address /* 366 */
  | DNAT ADDRSET STRING PORT NUMBER /* 367 */
  | DNAT ADDRSET STRING PORT NUMBER_RANGE POOLOPT Pool_Option Optional_Persist_Timeout /* 368 */
  | DNAT ADDRSET STRING PORT NUMBER_RANGE /* 369 */
  | DNAT ADDRSET STRING POOLOPT Pool_Option Optional_Persist_Timeout /* 370 */
  | DNAT ADDRSET STRING /* 371 */
  | DNAT IP IP_Address PORT NUMBER_RANGE /* 372 */
  | DNAT IP IP_Address PORT NUMBER /* 373 */
  | DNAT IP IP_Address /* 374 */
  | LB LBTYPE LB_Type /* 375 */
  | LB LBTYPE LB_Type LBIDLETIMEOUT NUMBER /* 376 */
  | LB LBTYPE LB_Type LBCLOSETIMEOUT NUMBER /* 377 */
  | LB LBTYPE LB_Type LBIDLETIMEOUT NUMBER LBCLOSETIMEOUT NUMBER /* 378 */
  | LB LBTYPE LB_Type LBIDLETIMEOUT NUMBER LBOPTIONS STRING /* 379 */
  | LB LBTYPE LB_Type LBCLOSETIMEOUT NUMBER LBOPTIONS STRING /* 380 */
  | LB LBTYPE LB_Type LBIDLETIMEOUT NUMBER LBCLOSETIMEOUT NUMBER LBOPTIONS STRING /* 381 */
  | LB LBTYPE LB_Type LBOPTIONS STRING /* 382 */
    ;

Optional_Save_to:
    %empty /* 383 */
  | SAVE TO STRING /* 384 */
    ;

%%

#include "TarnFWLog.h"

void yyerror(YYLTYPE*, TarnFirewall::FWStatus_t* status, void* scanner, const char* filename,
             TarnFirewall::CTarnFWCmdList** cmdList, TarnFirewall::CTarnFWCmdConfig** cmdConfig,
             const char* message) {
  const TarnFirewall::fw_lex_extra_* extra = yyget_extra(scanner);
  if (extra->status != TarnFirewall::FW_STATUS_OK) {
    *status = extra->status;
    message = extra->message;
  }
  TARNFW_ERROR("[%s:%d] %s\n", filename == nullptr ? "" : filename, yyget_lineno(scanner),
               message);
  if (*status == TarnFirewall::FW_STATUS_OK) *status = TarnFirewall::FW_STATUS_PARSING_ERROR;
  *cmdList = nullptr;
  *cmdConfig = nullptr;
}
