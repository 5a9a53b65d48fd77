#include "linux/drivers/AppleSMCDriver.h"

#include "linux/drivers/IndexedKeys.h"
#include "linux/drivers/SensorFiles.h"
#include "smc/FourCharCode.h"

#include <array>
#include <utility>

namespace orv {

namespace {

constexpr std::uint32_t keyCountKey = fourCharCode("#KEY");

// The driver's device on Macs up to about 2017, and on those with a T2 chip.
constexpr std::array<const char*, 2> applesmcFolders{
    "/sys/devices/platform/applesmc.768",
    "/sys/bus/acpi/devices/APP0001:00",
};

} // namespace

AppleSMCDriver::AppleSMCDriver(SMCAttributes& driverCalls, std::string systemRoot)
    : calls(driverCalls)
    , root(std::move(systemRoot))
{
}

bool AppleSMCDriver::hasSMC()
{
    lookForSource();
    return source != nullptr;
}

SMCOutcome AppleSMCDriver::keyInfo(std::uint32_t key, Hardware::KeyInfo& info)
{
    if (!hasSMC())
        return SMCOutcome::failed();
    if (key == keyCountKey) {
        info = {.dataSize = 4, .dataType = fourCharCode("ui32")};
        return {};
    }
    const auto found = position(key);
    if (!found)
        return SMCOutcome::unknownKey();
    info = source->keys()[*found].info;
    return {};
}

SMCOutcome AppleSMCDriver::readBytes(std::uint32_t key, Hardware::Bytes& bytes)
{
    if (!hasSMC())
        return SMCOutcome::failed();
    if (key == keyCountKey) {
        const auto count = source->keys().size();
        for (std::size_t index = 0; index < 4; ++index)
            bytes[index] = static_cast<std::uint8_t>(count >> 8 * (3 - index));
        return {};
    }
    const auto found = position(key);
    return found ? source->readBytes(*found, bytes) : SMCOutcome::unknownKey();
}

SMCOutcome AppleSMCDriver::keyAtIndex(std::uint32_t index, std::uint32_t& key)
{
    if (!hasSMC())
        return SMCOutcome::failed();
    const auto& keys = source->keys();
    if (index >= keys.size())
        return SMCOutcome::unknownKey();
    if (keys[index].name == 0)
        return SMCOutcome::failed();
    key = keys[index].name;
    return {};
}

std::unique_ptr<SMCKeySource> AppleSMCDriver::findSource()
{
    for (const auto* folder : applesmcFolders) {
        if (auto indexed = IndexedKeys::open(calls, root + folder))
            return indexed;
        if (auto files = SensorFiles::applesmc(calls, root + folder))
            return files;
    }
    return SensorFiles::macsmc(calls, root + "/sys/class/hwmon");
}

// A value is asked for right after its key's info.
std::optional<std::size_t> AppleSMCDriver::position(std::uint32_t key)
{
    if (lastFound && source->keys()[*lastFound].name == key)
        return lastFound;
    const auto found = positions.find(key);
    lastFound = found == positions.end() ? std::nullopt : std::optional(found->second);
    return lastFound;
}

void AppleSMCDriver::lookForSource()
{
    if (std::exchange(hasLooked, true))
        return;
    source = findSource();
    if (!source)
        return;
    const auto& keys = source->keys();
    for (std::size_t index = 0; index < keys.size(); ++index) {
        if (keys[index].name != 0)
            positions.emplace(keys[index].name, index);
    }
}

} // namespace orv
