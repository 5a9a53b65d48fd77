#pragma once

#include "orvctl/top/Top.h"
#include "json/JSONReader.h"

#include <fmt/format.h>

#include <string>
#include <vector>

namespace orv {

inline Dictionary dictionary(const std::string& text)
{
    std::string fault;
    return *parseStrictJSON(text, fault)->as<Dictionary>();
}

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
