#pragma once

#include "readings/Value.h"

#include <cstdint>
#include <string_view>

namespace orv {

/// A member of a reply's entry; an empty text or 0 when it has none of that type.
template <typename T> T member(const Dictionary& entry, std::string_view key)
{
    const auto* content = entry.findAs<T>(key);
    return content ? *content : T{};
}

/// A speed of a fan's entry, in revolutions a minute.
inline double speed(const Dictionary& entry, std::string_view key)
{
    return static_cast<double>(member<std::int64_t>(entry, key));
}

} // namespace orv
