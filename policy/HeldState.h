#pragma once

/// Whether a filter holds a state, asked by one message.

#include "State.h"
#include "TarnFWTypes.h"

/// Asks the filter for everything that the state says, with all questions in one message, and for
/// what there is beside it. True when the answers agree with the state, where other positions of
/// the same rules in the same order are no difference. False says only that this is not known: the
/// filter holds something else, changes meanwhile, or does not answer. Nothing is thrown but what
/// the standard library throws.
///
/// A message holds 65,535 questions at most, and here 256 megabytes; a larger state takes several.
bool filterHolds(TarnFirewall::fwlibhandle_* library, const TarnFirewall::dvs_port_& port,
                 const State& state);
