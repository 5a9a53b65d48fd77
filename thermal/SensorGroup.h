#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace orv {

/// What of a machine a temperature sensor belongs to.
enum class SensorGroup : std::uint8_t { cpu, gpu, memory, battery, storage, power, airflowAndEnclosure, radio, other };

struct SensorGroupRow {
    SensorGroup group;
    std::string_view identifier; ///< For programs; kept: it is a label in what others store.
    std::string_view heading; ///< For people.
};

/// One row a group, in the order of SensorGroup.
inline constexpr std::array<SensorGroupRow, 9> sensorGroups{{
    {SensorGroup::cpu, "cpu", "CPU"},
    {SensorGroup::gpu, "gpu", "GPU"},
    {SensorGroup::memory, "memory", "Memory"},
    {SensorGroup::battery, "battery", "Battery"},
    {SensorGroup::storage, "storage", "Storage"},
    {SensorGroup::power, "power", "Power"},
    {SensorGroup::airflowAndEnclosure, "airflow_and_enclosure", "Airflow and enclosure"},
    {SensorGroup::radio, "radio", "Radio"},
    {SensorGroup::other, "other", "Other"},
}};

constexpr const SensorGroupRow& rowOf(SensorGroup group)
{
    return sensorGroups[static_cast<std::size_t>(group)];
}
constexpr std::string_view identifierOf(SensorGroup group)
{
    return rowOf(group).identifier;
}
constexpr std::string_view headingOf(SensorGroup group)
{
    return rowOf(group).heading;
}

/// The group of a temperature sensor with this title; a title that no sensor of the catalogue has is of `other`.
SensorGroup groupOf(std::string_view title);

} // namespace orv
