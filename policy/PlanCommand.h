#pragma once

/// The steps of a plan as commands and as lines of text, and states that no plan leads to.

#include <memory>
#include <string>

#include "Plan.h"
#include "TarnFWCmd.h"

/// The command that a step's statement is. It carries the records as they stand in the state that
/// the plan leads to, also those that the language can't say, and points into that state.
std::unique_ptr<TarnFirewall::CTarnFWCmd> stepCommand(const PlanStep& step, const State& to,
                                                      const TarnFirewall::dvs_port_* port);

/// The statement of a step, with ";" and a line end; a comment where the language has no words.
std::string stepText(const PlanStep& step, const State& to);

/// Why no filter can hold the state, whatever it holds before; empty where there is no such reason:
/// a jump to a rule set, or a root, that the state does not have.
std::string obstacleOf(const State& state);
