#pragma once

#include "explain/Answers.h"
#include "explain/Explanation.h"
#include "orvctl/views/Selection.h"
#include "readings/Value.h"

#include <vector>

namespace orv {

/// The document "orv.explain/1": the whole explanation, or what answers are about.
Value explanationDocument(const Explanation& explanation, const std::vector<Answer>& answers, Filter filter);

} // namespace orv
