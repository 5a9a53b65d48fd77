#pragma once

#include "explain/Answers.h"
#include "explain/Explanation.h"

#include <cstddef>
#include <vector>

namespace orv {

/// Which verdicts are wanted.
enum class Filter { all, missing, shown };

/// Places in an explanation, in its order.
struct Selection {
    std::vector<std::size_t> sensors;
    std::vector<std::size_t> devices;
    std::vector<std::size_t> watch;
};

/// What answers are about, or all when there are none; of that what the filter lets through.
Selection select(const Explanation& explanation, const std::vector<Answer>& answers, Filter filter);

} // namespace orv
