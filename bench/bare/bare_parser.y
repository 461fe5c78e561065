/* Grammar of the bare program: the two statements of the load benchmark. */

%require "3.8"
%language "c"
%expect 0

%code requires {
#include "bare.h"
}

%union {
  std::uint32_t number;
  BareBlock block;
}

%token CREATE RULESET ADDRSET WITH RULE INOUT PROTOCOL TCP FROM TO PORT ACCEPT NAME
%token <number> NUMBER ADDRESS
%token <block> BLOCK

%%

text:
    %empty
  | text statement
    ;

statement:
    CREATE RULESET NAME WITH '{' rules '}' ';'
  | CREATE ADDRSET NAME WITH '{' addresses '}' ';'
    ;

rules:
    rule ';'
  | rules rule ';'
    ;

rule:
    RULE NUMBER INOUT PROTOCOL TCP FROM ADDRESS TO BLOCK PORT NUMBER ACCEPT
      {
        if ($11 > 0xffff) yyerror("bad port");
        writeRule($2, $7, $9, $11);
      }
    ;

addresses:
    ADDRESS
      { writeAddress($1); }
  | addresses ',' ADDRESS
      { writeAddress($3); }
    ;
