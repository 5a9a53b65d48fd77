#include "smc/Fans.h"

#include "base/Fatal.h"
#include "readings/Integers.h"

#include <algorithm>
#include <cmath>

namespace orv::Orv_SMCHelper {

namespace {

std::int64_t roundedSpeed(SMC& smc, const std::string& key, bool& isRead)
{
    const auto value = smc.getValue(key);
    isRead = value.has_value();
    const auto speed = integerPart(std::round(value.value_or(0.0)));
    if (!speed)
        fatalError("a fan speed is out of range");
    return *speed;
}

} // namespace

std::string fanKey(std::int64_t index, std::string_view speed)
{
    return std::string{'F', "0123456789ABCDEF"[index]}.append(speed);
}

ThermalDictionary readFans(SMC& smc, const std::vector<std::string_view>& fanKeys, FanObserver* observer)
{
    ThermalDictionary fans;
    for (std::int64_t index = 0; index < maxFanCount; ++index) {
        auto actualKey = fanKey(index, actualSpeed);
        if (std::ranges::find(fanKeys, actualKey) == fanKeys.end())
            continue;
        const auto lostBefore = smc.lostReadings;
        FanEntry fan{.title = fanTitle(index)};
        ReadSpeeds readSpeeds;
        fan.minvalue = roundedSpeed(smc, fanKey(index, minimumSpeed), readSpeeds.minimum);
        fan.maxvalue = roundedSpeed(smc, fanKey(index, maximumSpeed), readSpeeds.maximum);
        fan.value = roundedSpeed(smc, actualKey, readSpeeds.actual);
        // What another program cost us says nothing of the fan: not even that a speed cannot be read.
        const bool isLost = smc.lostReadings != lostBefore;
        if (observer)
            observer->fanRead(index, fan, isLost ? std::nullopt : std::optional(readSpeeds));
        if (isLost)
            continue;
        fans.insert_or_assign(std::move(actualKey), std::move(fan));
    }
    return fans;
}

std::string fanTitle(std::int64_t index)
{
    if (index == 0)
        return "Left Side";
    if (index == 1)
        return "Right Side";
    return "Fan " + std::to_string(index);
}

} // namespace orv::Orv_SMCHelper
