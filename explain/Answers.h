#pragma once

#include "explain/Explanation.h"

#include <cstddef>
#include <string>
#include <vector>

namespace orv {

/// What is said about one thing that was asked for.
struct Answer {
    std::string what;
    bool isFound = false;
    std::vector<std::string> lines{}; // for people; what concerns single rows is said by those
    std::vector<std::size_t> sensors{}; // places in the explanation
    std::vector<std::size_t> devices{};
    std::vector<std::size_t> watch{};
};

/// Answers for a key, a title or a part of one, a HID code, a Bluetooth address, name or kind, an entry of the watch
/// file, or one of the words temperature, fan, hid, bluetooth and watch. Capital letters matter in keys alone.
/// A whole question is answered by its words.
Answer answerFor(const std::string& what, const Explanation& explanation, const Inspection& inspection);

} // namespace orv
