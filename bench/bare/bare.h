#pragma once

/// What a load costs at the least: a program that reads the statements of the load benchmark with
/// flex and bison, writes the kernel's record of each rule or address into one growing buffer, and
/// does nothing else. It knows no other statement, checks nothing but numbers, keeps no objects and
/// builds no message around the records.

#include <cstdint>

/// Where the next record of the kernel begins, cleared. Ends the program without memory.
unsigned char* nextRecord(unsigned int size);

/// An IPv4 address in host order, with the length of its prefix.
struct BareBlock {
  std::uint32_t address;
  unsigned int prefix;
};

/// One rule "rule ID inout protocol tcp from SOURCE to DESTINATION port PORT accept;", 892 bytes.
void writeRule(std::uint32_t id, std::uint32_t source, BareBlock destination, unsigned int port);

/// One member of an address set, 144 bytes.
void writeAddress(std::uint32_t address);

int yylex();
int yyparse();
[[noreturn]] void yyerror(const char* message);
