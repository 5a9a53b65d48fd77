#include "thermal/OrvTemperatureFans.h"

#include "thermal/ZpSystemInfo.h"

#include <sys/sysctl.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace orv {

namespace {

constexpr std::array<const char*, 5> m1Models{"MacBookPro17,1", "MacBookAir10,1", "Macmini9,1", "iMac21,1", "iMac21,2"};

// The kernel writes a 32-bit count into the low half of the preset number, or nothing.
std::int64_t coreCount(const char* name)
{
    std::int64_t count = 4;
    std::size_t size = sizeof(count);
    sysctlbyname(name, &count, &size, nullptr, 0);
    return count;
}

} // namespace

OrvTemperatureFans::OrvTemperatureFans()
    : numberOfEfficiencyCores(coreCount("hw.perflevel1.logicalcpu"))
    , numberOfPerformanceCores(coreCount("hw.perflevel0.logicalcpu"))
    , platform(ZpSystemInfo::modelIdentifier())
    , isAppleChip(ZpSystemInfo::cpuBrandString().find("Apple") != std::string::npos)
{
}

const OrvTemperatureFans& OrvTemperatureFans::shared()
{
    static const auto& profile = *new OrvTemperatureFans;
    return profile;
}

bool OrvTemperatureFans::isM1() const
{
    return std::ranges::any_of(m1Models, [&](auto model) { return platform.find(model) != std::string::npos; });
}

} // namespace orv
