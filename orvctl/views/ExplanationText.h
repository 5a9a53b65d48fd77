#pragma once

#include "explain/Answers.h"
#include "explain/Explanation.h"
#include "orvctl/views/Selection.h"
#include "orvctl/views/Terminal.h"

#include <string>
#include <vector>

namespace orv {

/// An explanation for people, at most 80 columns wide: what is in the way first, then the machine, then what was asked
/// for, or everything. What is shown is only counted, unless it was asked for.
std::string explanationText(
    const Explanation& explanation, const std::vector<Answer>& answers, Filter filter, Colour colour);

} // namespace orv
