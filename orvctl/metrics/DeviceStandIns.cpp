#include "orvctl/metrics/DeviceStandIns.h"

#include <fmt/core.h>

#include <algorithm>
#include <cstdint>
#include <string_view>
#include <vector>

namespace orv {

namespace {

std::string digitsFor(std::string_view key)
{
    std::uint32_t sum = 2166136261u; // FNV-1a
    for (const char character : key)
        sum = (sum ^ static_cast<unsigned char>(character)) * 16777619u;
    return fmt::format("{:04x}", (sum >> 16) ^ (sum & 0xffff));
}

} // namespace

std::map<std::string, std::string> deviceStandIns(const Dictionary& bluetooth)
{
    std::vector<std::string> keys;
    for (const auto& device : bluetooth)
        keys.push_back(device.key);
    std::ranges::sort(keys);
    std::map<std::string, int> taken;
    std::map<std::string, std::string> standIns;
    for (const auto& key : keys) {
        const auto digits = digitsFor(key);
        const int count = ++taken[digits];
        standIns[key] = count == 1 ? digits : fmt::format("{}-{}", digits, count);
    }
    return standIns;
}

} // namespace orv
