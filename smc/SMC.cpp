#include "smc/SMC.h"

#include "base/Fatal.h"
#include "base/Owned.h"
#include "readings/Integers.h"
#include "readings/Text.h"
#include "smc/FourCharCode.h"
#include "smc/SMCParamBlock.h"
#include "smc/SMCValueDecoding.h"

#include <algorithm>
#include <cstdint>
#include <functional>

namespace orv {

namespace {

struct IOObjectTraits {
    using Handle = io_object_t;
    static constexpr Handle none = 0;
    static void release(Handle handle) { IOObjectRelease(handle); }
};

using IOObject = Owned<IOObjectTraits>;

kern_return_t exchange(io_connect_t conn, const SMCParamBlock& input, SMCParamBlock& output)
{
    std::size_t outputSize = sizeof(output);
    return IOConnectCallStructMethod(conn, kSMCUserClientSelector, &input, sizeof(input), &output, &outputSize);
}

IOObject firstService(CFMutableDictionaryRef matching)
{
    constexpr mach_port_t mainPort = MACH_PORT_NULL; // the value of both names of the default main port
    IOObject iterator;
    if (IOServiceGetMatchingServices(mainPort, matching, iterator.out()) != KERN_SUCCESS)
        return IOObject();
    return IOObject(IOIteratorNext(iterator.get()));
}

std::int64_t keyCount(double count)
{
    const auto integer = integerPart(count);
    if (!integer || *integer < 0)
        fatalError("the SMC's key count is not a count");
    // Checked before the walk: the index that does not fit would come after four billion exchanges.
    if (*integer > UINT32_MAX)
        fatalError("the SMC's key index does not fit in 32 bits");
    return *integer;
}

bool isTemperatureOrFanKey(const std::string& key)
{
    return !key.empty() && (key[0] == 'T' || key[0] == 'F');
}

} // namespace

void SMC::open()
{
    const auto matching = IOServiceMatching("AppleSMC");
    if (!matching)
        fatalError("no matching dictionary for AppleSMC");
    const auto service = firstService(matching);
    if (!service)
        return;
    IOServiceOpen(service.get(), mach_task_self(), kSMCUserClientType, &conn);
}

kern_return_t SMC::close()
{
    return conn == 0 ? KERN_SUCCESS : IOServiceClose(conn);
}

std::optional<double> SMC::getValue(const std::string& key)
{
    SMCVal val{.key = key};
    if (read(val) != KERN_SUCCESS)
        return std::nullopt;
    return decodeValue(val);
}

const std::vector<std::string>& SMC::getAllKeys()
{
    if (!keysList)
        keysList = buildKeysList();
    return *keysList;
}

kern_return_t SMC::read(SMCVal& val)
{
    if (characterCount(val.key) != 4)
        fatalError("an SMC key has four characters");

    SMCParamBlock input{};
    SMCParamBlock output{};
    input.key = fourCharCode(val.key);
    input.data8 = kSMCGetKeyInfo;
    if (const auto status = exchange(conn, input, output); status != KERN_SUCCESS)
        return status;
    val.dataSize = output.keyInfo.dataSize;
    val.dataType = fourCharString(output.keyInfo.dataType);

    input.keyInfo.dataSize = val.dataSize;
    input.data8 = kSMCReadBytes;
    if (const auto status = exchange(conn, input, output); status != KERN_SUCCESS) {
        lostReadings += status == kSMCReadingLost;
        return status;
    }
    std::copy_n(output.bytes, std::min<std::size_t>(val.dataSize, val.bytes.size()), val.bytes.begin());
    return KERN_SUCCESS;
}

std::vector<std::string> SMC::readKeyNames()
{
    const auto value = getValue("#KEY");
    if (!value)
        return {};
    const auto count = keyCount(*value);
    std::vector<std::string> keys;
    // The index one past the last key is asked for too; whatever it names is a name like any other.
    for (std::int64_t index = 0; index <= count; ++index) {
        SMCParamBlock input{};
        SMCParamBlock output{};
        input.data8 = kSMCGetKeyFromIndex;
        input.data32 = static_cast<std::uint32_t>(index);
        if (exchange(conn, input, output) != KERN_SUCCESS)
            continue;
        keys.push_back(fourCharString(output.key));
    }
    return keys;
}

std::vector<std::string> SMC::buildKeysList()
{
    auto keys = readKeyNames();
    std::erase_if(keys, std::not_fn(isTemperatureOrFanKey));
    return keys;
}

SMC& sharedSMC()
{
    static auto& smc = *new SMC;
    return smc;
}

} // namespace orv
