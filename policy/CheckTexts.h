#pragma once

/// A whole check, from texts to finds.

#include "CheckNames.h"
#include "Diagnostic.h"

/// The finds in these texts, which are one policy in their order; sorted. With `held`, all of it is
/// for one filter that holds these names. Nothing in the process is
/// changed: what the texts say of the default selector is forgotten again.
Diagnostics checkTexts(const SourceTexts& sources, const HeldNames* held = nullptr);
