#pragma once

/// A whole check, from texts to finds.

#include "Diagnostic.h"

/// The finds in these texts, which are one policy in their order; sorted. Nothing in the process is
/// changed: what the texts say of the default selector is forgotten again.
Diagnostics checkTexts(const SourceTexts& sources);
