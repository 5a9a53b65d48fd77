#pragma once

#include "orvctl/top/Top.h"
#include "tests/support/ParsedDictionary.h"

#include <fmt/format.h>

#include <string>
#include <vector>

namespace orv {

inline std::string sensor(const std::string& key, const std::string& title, double degrees)
{
    return fmt::format(R"("{}": {{"type": "temperature", "title": "{}", "value": {}}})", key, title, degrees);
}

inline std::string joined(const std::vector<std::string>& members)
{
    std::string text = "{";
    for (const auto& member : members)
        text += (text.size() > 1 ? "," : "") + member;
    return text + '}';
}

} // namespace orv
