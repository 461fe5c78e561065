#pragma once

/// The three forms in which finds are printed.

#include <cstdio>

#include "Diagnostic.h"

/// "FILE:LINE:COLUMN: error: ..." with the line, a mark under the word and what would have done,
/// then how many there are. Nothing without finds. `colours`: with escape sequences for a terminal.
void printForPeople(std::FILE* stream, const SourceTexts& sources, const Diagnostics& diagnostics,
                    bool colours);

/// One object of the form that docs/policy.md describes.
void printJson(std::FILE* stream, const SourceTexts& sources, const Diagnostics& diagnostics);

/// SARIF 2.1.0. Columns are characters there.
void printSarif(std::FILE* stream, const SourceTexts& sources, const Diagnostics& diagnostics);
