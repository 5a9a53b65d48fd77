#pragma once

#include "orvctl/top/TopReading.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace orv {

enum class Order : std::uint8_t { title, value, key };

/// What the user chose to see.
struct Choice {
    std::string filter; // a part of a title, a key or a group's heading, in capital or small letters
    Order order = Order::title;
    std::map<std::size_t, bool> folds; // of the groups that the user folded (true) or unfolded
};

/// A group that has something to show.
struct OutlinedGroup {
    std::size_t group = 0; // of topGroups
    std::vector<const TopReading*> readings; // in their order
    bool isFolded = false;
};

/// The readings by groups. Where they take more lines than `height`, a heading each included, the largest groups are
/// folded to one line, as many as it takes; what the user chose stays.
std::vector<OutlinedGroup> outline(const std::vector<TopReading>& readings, const Choice& choice, std::size_t height);

} // namespace orv
