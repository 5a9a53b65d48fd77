#include "linux/drivers/AppleSMCDriver.h"

#include "linux/drivers/IndexedKeys.h"
#include "linux/drivers/SensorFiles.h"
#include "smc/FourCharCode.h"

#include <algorithm>
#include <cerrno>
#include <utility>

namespace orv {

namespace {

constexpr std::uint32_t keyCountKey = fourCharCode("#KEY");

// The driver's device on Macs up to about 2017, and on those with a T2 chip.
constexpr const char* platformFolder = "/sys/devices/platform/applesmc.768";
constexpr const char* acpiFolder = "/sys/bus/acpi/devices/APP0001:00";
constexpr const char* hwmonFolder = "/sys/class/hwmon";

// A minute of refreshes, in which a driver that was just loaded adds its files and gets its group.
constexpr int looksForMore = 12;

} // namespace

AppleSMCDriver::AppleSMCDriver(SMCAttributes& driverCalls, std::string systemRoot, std::function<void()> whenNewKeys)
    : calls(driverCalls)
    , root(std::move(systemRoot))
    , onNewKeys(std::move(whenNewKeys))
{
}

bool AppleSMCDriver::hasSMC()
{
    lookAgain();
    if (std::exchange(hasNewKeys, false) && onNewKeys)
        onNewKeys();
    return source != nullptr;
}

SMCOutcome AppleSMCDriver::keyInfo(std::uint32_t key, Hardware::KeyInfo& info)
{
    lookFirst();
    if (!source)
        return SMCOutcome::lost();
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
    lookFirst();
    if (!source)
        return SMCOutcome::lost();
    if (key == keyCountKey) {
        const auto count = source->keys().size();
        for (std::size_t index = 0; index < 4; ++index)
            bytes[index] = static_cast<std::uint8_t>(count >> 8 * (3 - index));
        return {};
    }
    const auto found = position(key);
    if (!found)
        return SMCOutcome::unknownKey();
    const auto outcome = source->readBytes(*found, bytes);
    if (outcome.status != SMCOutcome::noDevice().status)
        return outcome;
    // Unloaded, and perhaps loaded again with its files at another place. That the driver is gone says no more of a fan
    // than a program that was in our way.
    look();
    const auto foundAnew = source ? position(key) : std::nullopt;
    return foundAnew ? source->readBytes(*foundAnew, bytes) : SMCOutcome::lost();
}

SMCOutcome AppleSMCDriver::keyAtIndex(std::uint32_t index, std::uint32_t& key)
{
    lookFirst();
    if (!source)
        return SMCOutcome::failed();
    const auto& keys = source->keys();
    if (index >= keys.size())
        return SMCOutcome::unknownKey();
    if (keys[index].name == 0)
        return SMCOutcome::failed();
    key = keys[index].name;
    return {};
}

void AppleSMCDriver::closeSMC()
{
    if (source)
        source->endTurn();
}

SMCAccess AppleSMCDriver::access() const
{
    if (!source)
        return SMCAccess::none;
    if (source->isComplete())
        return SMCAccess::everyKey;
    for (const auto* folder : {platformFolder, acpiFolder}) {
        const auto index = calls.open(root + folder + "/key_at_index", SMCAttributes::Access::readingAndWriting);
        if (!index && errno == EACCES)
            return SMCAccess::refused;
    }
    return SMCAccess::files;
}

std::unique_ptr<SMCKeySource> AppleSMCDriver::findSource() const
{
    for (const auto* folder : {platformFolder, acpiFolder}) {
        if (auto indexed = IndexedKeys::open(calls, root + folder))
            return indexed;
        if (auto files = SensorFiles::applesmc(calls, root + folder))
            return files;
    }
    return SensorFiles::macsmc(calls, root + hwmonFolder);
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

void AppleSMCDriver::lookFirst()
{
    if (!hasLooked)
        look();
}

void AppleSMCDriver::lookAgain()
{
    const auto appears = [this](const std::string& place) { return calls.exists(place); };
    lookFirst();
    if (source)
        lookForMore();
    else if (std::ranges::any_of(places, appears))
        look();
}

// Keys that were readable once are not taken away for a moment in which they are not.
void AppleSMCDriver::lookForMore()
{
    if (looksLeft == 0)
        return;
    --looksLeft;
    auto found = findSource();
    if (found && found->keys().size() > source->keys().size())
        use(std::move(found));
}

void AppleSMCDriver::look()
{
    hasLooked = true;
    use(findSource());
}

void AppleSMCDriver::use(std::unique_ptr<SMCKeySource> found)
{
    source = std::move(found);
    looksLeft = source && !source->isComplete() ? looksForMore : 0;
    places = source ? std::vector<std::string>() : placesToWatch();
    hasNewKeys = true;
    positions.clear();
    lastFound.reset();
    if (!source)
        return;
    const auto& keys = source->keys();
    for (std::size_t index = 0; index < keys.size(); ++index) {
        if (keys[index].name != 0)
            positions.emplace(keys[index].name, index);
    }
}

// Where ACPI lists the devices it has done so since the computer was started: what is not there is no T2 chip's, and
// Apple silicon has no ACPI. So a computer that is no Mac costs one look.
std::vector<std::string> AppleSMCDriver::placesToWatch() const
{
    std::vector<std::string> awaited{root + platformFolder};
    if (!calls.exists(root + "/sys/bus/acpi/devices")) {
        awaited.push_back(root + acpiFolder);
        awaited.push_back(SensorFiles::nextHwmonFolder(calls, root + hwmonFolder));
    } else if (calls.exists(root + acpiFolder)) {
        awaited.push_back(root + acpiFolder + "/key_count");
    }
    return awaited;
}

} // namespace orv
