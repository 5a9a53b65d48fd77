#pragma once

#include "readings/Value.h"

#include <string_view>

namespace orv {

/// A member of a reply's entry; an empty text or 0 when it has none of that type.
template <typename T> T member(const Dictionary& entry, std::string_view key)
{
    const auto* content = entry.findAs<T>(key);
    return content ? *content : T{};
}

} // namespace orv
