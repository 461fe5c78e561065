#pragma once

/// Whether a filter holds a state, asked by one message.

#include <cstddef>
#include <cstdint>
#include <limits>

#include "State.h"
#include "TarnFWTypes.h"

/// What one message holds at most. Its header counts the questions in 16 bits.
struct QuestionLimits {
  std::size_t questions = std::numeric_limits<std::uint16_t>::max();
  std::size_t bytes = std::size_t{256} << 20;  // of questions with room for their answers
};

/// Asks the filter for everything that the state says, with all questions in one message, and for
/// what there is beside it. True when the answers agree with the state, where other positions of
/// the same rules in the same order are no difference. False says only that this is not known: the
/// filter holds something else, changes meanwhile, or does not answer. Nothing is thrown but what
/// the standard library throws.
/// What is more than a message holds takes several; one question that is larger by itself has a
/// message of its own.
bool filterHolds(TarnFirewall::fwlibhandle_* library, const TarnFirewall::dvs_port_& port,
                 const State& state, const QuestionLimits& limits = {});
