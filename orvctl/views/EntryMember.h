#pragma once

#include "readings/Value.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace orv {

/// A text of a reply's entry, which lives as long; empty when it has none of that name.
inline std::string_view textMember(const Dictionary& entry, std::string_view key)
{
    const auto* text = entry.findAs<std::string>(key);
    return text ? std::string_view(*text) : std::string_view();
}

/// A number of a reply's entry; 0 when it has none of that type.
template <typename T> T numberMember(const Dictionary& entry, std::string_view key)
{
    const auto* number = entry.findAs<T>(key);
    return number ? *number : 0;
}

/// A speed of a fan's entry, in revolutions a minute.
inline double speed(const Dictionary& entry, std::string_view key)
{
    return static_cast<double>(numberMember<std::int64_t>(entry, key));
}

} // namespace orv
