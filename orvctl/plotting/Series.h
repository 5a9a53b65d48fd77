#pragma once

#include "orvctl/plotting/Trace.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orv {

/// What has an axis of its own.
enum class Quantity : std::uint8_t { temperature, fanSpeed, batteryLevel };

struct QuantityRow {
    Quantity quantity;
    std::string_view unit; // of a Figure
    std::string_view caption; // of its panel
    std::string_view symbol; // behind a number
};

/// One row a quantity, in the order of Quantity.
inline constexpr std::array<QuantityRow, 3> quantities{{
    {Quantity::temperature, "celsius", "Temperatures in °C", "°C"},
    {Quantity::fanSpeed, "rpm", "Fans in revolutions per minute", "rpm"},
    {Quantity::batteryLevel, "percent", "Battery levels in %", "%"},
}};

constexpr const QuantityRow& rowOf(Quantity quantity)
{
    return quantities[static_cast<std::size_t>(quantity)];
}

/// Nothing for a unit that no figure has.
constexpr std::optional<Quantity> quantityOf(std::string_view unit)
{
    for (const auto& row : quantities) {
        if (row.unit == unit)
            return row.quantity;
    }
    return std::nullopt;
}

/// What one sensor, fan or battery showed.
struct Series {
    std::string key;
    std::string title;
    Quantity quantity;
    Trace trace;
    double least = 0;
    double most = 0;
    double latest = 0;
};

} // namespace orv
