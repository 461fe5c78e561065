#pragma once

/// What the scanner makes of a text, as texts that tests can compare.

#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "TarnFWScanner.h"
#include "TarnFWText.h"
#include "tarnfw.h"
#include "tarnfw_parser.h"

namespace ScannedTokens {

using namespace TarnFirewall;

inline std::string etherText(const fw_ether_& ether) {
  return formatText("%02x%02x%02x%02x%02x%02x", ether.octet[0], ether.octet[1], ether.octet[2],
                    ether.octet[3], ether.octet[4], ether.octet[5]);
}

inline std::string addressText(int family, const void* address) {
  char text[INET6_ADDRSTRLEN];
  return inet_ntop(family, address, text, sizeof text);
}

/// A token as "NAME(value)"; keywords and punctuation as "#code".
inline std::string tokenText(int token, const YYSTYPE& value) {
  const auto text = [&](const char* name) {
    EXPECT_EQ(std::strlen(value.text->data), value.text->length);
    return std::string(name) + "(" + value.text->data + ")";
  };
  switch (token) {
    case TK_STRING:
      return text("STRING");
    case TK_IPV4:
      return text("IPV4");
    case TK_IPV4_CIDR:
      return text("IPV4_CIDR");
    case TK_IPV4_MASK:
      return text("IPV4_MASK");
    case TK_IPV4_PORT:
      return text("IPV4_PORT");
    case TK_ANY_PORT:
      return text("ANY_PORT");
    case TK_IPV6:
      return text("IPV6");
    case TK_IPV6_CIDR:
      return text("IPV6_CIDR");
    case TK_NUMBER:
      return "NUMBER(" + std::to_string(value.number) + ")";
    case TK_NUMBER_RANGE:
      return formatText("RANGE(%u %u)", value.numberRange.low, value.numberRange.high);
    case TK_IPV4_RANGE:
      return "IPV4_RANGE(" + addressText(AF_INET, &value.ipv4Range.first) + " " +
             addressText(AF_INET, &value.ipv4Range.last) + ")";
    case TK_IPV6_RANGE:
      return "IPV6_RANGE(" + addressText(AF_INET6, &value.ipv6Range->first) + " " +
             addressText(AF_INET6, &value.ipv6Range->last) + ")";
    case TK_ETHER:
      return "ETHER(" + etherText(value.ether) + ")";
    case TK_ETHER_RANGE:
      return "ETHER_RANGE(" + etherText(value.etherPair->first) + " " +
             etherText(value.etherPair->second) + ")";
    case TK_ETHER_MASK:
      return "ETHER_MASK(" + etherText(value.etherPair->first) + " " +
             etherText(value.etherPair->second) + ")";
    case TK_ID_PORT:
      return formatText("ID_PORT(%s %u)", value.idPort->text, value.idPort->port);
    default:
      return "#" + std::to_string(token);
  }
}

/// One scan of a text or a stream, with its record.
class Scan {
 public:
  explicit Scan(const std::string& text) : Scan() {
    buffer_ = yy_scan_string(text.c_str(), scanner_);
    yyset_lineno(1, scanner_);
  }
  explicit Scan(std::FILE* stream) : Scan() { yyset_in(stream, scanner_); }
  ~Scan() {
    if (buffer_ != nullptr) yy_delete_buffer(buffer_, scanner_);
    yylex_destroy(scanner_);
  }
  Scan(const Scan&) = delete;
  Scan& operator=(const Scan&) = delete;

  int next() { return yylex(&value, &location_, scanner_); }
  int line() const { return yyget_lineno(scanner_); }

  std::vector<std::string> all() {
    std::vector<std::string> tokens;
    while (const int token = next()) tokens.push_back(tokenText(token, value));
    return tokens;
  }

  fw_lex_extra_ extra;
  YYSTYPE value = {};

 private:
  Scan() {
    EXPECT_EQ(yylex_init(&scanner_), 0);
    yyset_extra(&extra, scanner_);
    EXPECT_EQ(yyget_extra(scanner_), &extra);
  }

  YYLTYPE location_ = {};
  void* scanner_ = nullptr;
  yy_buffer_state* buffer_ = nullptr;
};

using Tokens = std::vector<std::string>;

inline Tokens scan(const std::string& text) { return Scan(text).all(); }

/// What a scan that fails leaves: "status|message".
inline std::string failure(const std::string& text) {
  Scan scan(text);
  scan.all();
  return std::to_string(scan.extra.status) + "|" + scan.extra.message;
}

inline const std::vector<std::pair<const char*, int>> kKeywords = {
    {"create", 259},
    {"add", 260},
    {"delete", 261},
    {"replace", 262},
    {"describe", 263},
    {"destroy", 264},
    {"enable", 265},
    {"shared", 275},
    {"disable", 266},
    {"set", 267},
    {"reorder", 268},
    {"clear", 269},
    {"ruleset", 270},
    {"address", 274},
    {"addrset", 271},
    {"attribute", 273},
    {"attrset", 272},
    {"rule", 276},
    {"dvswitch", 277},
    {"port", 278},
    {"root", 279},
    {"default", 280},
    {"agent", 281},
    {"dvsport", 282},
    {"inet", 283},
    {"inet6", 284},
    {"ip", 285},
    {"mac", 286},
    {"vnic", 287},
    {"filter", 288},
    {"vif", 289},
    {"size", 290},
    {"info", 291},
    {"stat", 292},
    {"revision", 293},
    {"checksum", 294},
    {"at", 295},
    {"inout", 296},
    {"in", 297},
    {"out", 298},
    {"of", 299},
    {"to", 300},
    {"as", 301},
    {"with", 302},
    {"keypolicy", 365},
    {"and", 303},
    {"into", 304},
    {"from", 305},
    {"all", 306},
    {"pass", 307},
    {"encrypt", 308},
    {"accept", 307},
    {"drop", 309},
    {"deny", 310},
    {"reject", 310},
    {"jumpto", 311},
    {"punt", 312},
    {"pbr", 313},
    {"snat", 314},
    {"dnat", 315},
    {"rbe", 317},
    {"lb", 316},
    {"poolopt", 366},
    {"lbtype", 367},
    {"lbidletimeout", 369},
    {"lbclosetimeout", 370},
    {"lboptions", 368},
    {"random", 374},
    {"round-robin", 373},
    {"l4", 371},
    {"l7", 372},
    {"tcp-conn-balance", 375},
    {"stateless", 323},
    {"dscp", 325},
    {"rtt", 321},
    {"log", 318},
    {"noflow", 319},
    {"lbrule", 320},
    {"tag", 322},
    {"FTP", 326},
    {"ORACLE", 327},
    {"DCERPC", 328},
    {"SUNRPC", 329},
    {"divert", 330},
    {"macrewrite", 331},
    {"copy", 332},
    {"NOT", 333},
    {"ethertype", 334},
    {"protocol", 335},
    {"flag", 336},
    {"flags", 337},
    {"SYN", 338},
    {"FIN", 339},
    {"RST", 340},
    {"PSH", 341},
    {"ACK", 342},
    {"URG", 343},
    {"ECE", 344},
    {"CWR", 345},
    {"NS", 346},
    {"option", 347},
    {"options", 347},
    {"icmptype", 348},
    {"typecode", 349},
    {"list", 350},
    {"connection", 351},
    {"connections", 351},
    {"exportver", 376},
    {"count", 352},
    {"spoofguard", 353},
    {"kif", 354},
    {"ANY", 355},
    {"config", 356},
    {"device", 357},
    {"socket", 359},
    {"save", 361},
    {"file", 358},
    {"ribs", 360},
    {"debug", 362},
    {"strict", 363},
    {"sloppy", 324},
    {"timeout", 364},
    {"extsrcprofile", 377},
    {"attrprofile", 378},
    {"uuid", 382},
    {"mapped", 383},
    {"connattr", 379},
    {"domain2ip", 380},
    {"uid2sidmap", 381},
};

inline const char* const kUuid = "12345678-9abc-def0-1234-56789abcdef0";
inline const char* const kGfy = "12 34 56 78 9a bc de f0-12 34 56 78 9a bc de f0";

}  // namespace ScannedTokens
