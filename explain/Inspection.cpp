#include "explain/Inspection.h"

#include "bluetooth/BluetoothReadings.h"
#include "bluetooth/SystemProfilerReport.h"
#include "bluetooth/ZpBluetoothSysProfile.h"
#include "thermal/Collection.h"
#include "thermal/ZpSystemInfo.h"

#include <algorithm>
#include <future>
#include <memory>
#include <set>
#include <utility>

namespace orv {

namespace {

/// Keeps what its reads gave.
class InspectedSMC final : public SMC {
public:
    SMCReads reads;

    kern_return_t read(SMCVal& val) override
    {
        const auto status = SMC::read(val);
        reads[val.key].push_back({status, val});
        return status;
    }
};

/// Passes the services on and keeps what they answered.
class InspectedHIDEventSystem final : public HIDEventSystem {
public:
    InspectedHIDEventSystem(HIDEventSystem& machine, std::vector<HIDRead>& answers)
        : behind(machine)
        , reads(answers)
    {
    }

    bool forEachService(std::int32_t page, std::int32_t usage, const std::function<void(HIDService&)>& visit) override
    {
        return behind.forEachService(page, usage, [&](HIDService& service) {
            InspectedService inspected(service, reads.emplace_back());
            visit(inspected);
        });
    }

private:
    class InspectedService final : public HIDService {
    public:
        InspectedService(HIDService& service, HIDRead& answer)
            : behind(service)
            , read(answer)
        {
        }

        Value locationID() override { return read.locationID = behind.locationID(); }
        std::optional<double> eventValue(std::int32_t eventType, std::int32_t field) override
        {
            return read.degrees = behind.eventValue(eventType, field);
        }

    private:
        HIDService& behind;
        HIDRead& read;
    };

    HIDEventSystem& behind;
    std::vector<HIDRead>& reads;
};

/// Ends the wait for a profiler, also for one that could not be started: then nobody keeps the delivery any longer.
class Delivery {
public:
    Delivery() = default;
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;
    ~Delivery()
    {
        if (!isMade)
            promise.set_value(std::nullopt);
    }

    void make(std::string output)
    {
        isMade = true;
        promise.set_value(std::move(output));
    }
    std::future<std::optional<std::string>> future() { return promise.get_future(); }

private:
    std::promise<std::optional<std::string>> promise;
    bool isMade = false;
};

std::optional<std::string> profilerOutput(ProcessLauncher& launcher)
{
    auto delivery = std::make_shared<Delivery>();
    auto output = delivery->future();
    ZpBluetoothSysProfile::startProfiler(
        launcher, [given = std::move(delivery)](std::string printed) { given->make(std::move(printed)); });
    return output.get();
}

std::vector<std::string> eachOnce(const std::vector<std::string>& keys)
{
    std::set<std::string_view> known;
    std::vector<std::string> result;
    for (const auto& key : keys) {
        if (known.insert(key).second)
            result.push_back(key);
    }
    return result;
}

bool isKey(const std::string& text)
{
    return text.size() == 4 && std::ranges::all_of(text, [](char character) { return character >= 0x20; });
}

void inspectSMC(HIDEventSystem& hidEventSystem, const std::vector<std::string>& wantedKeys, Inspection& inspection)
{
    InspectedSMC smc;
    InspectedHIDEventSystem services(hidEventSystem, inspection.services);
    inspection.thermal = Orv_SMCHelper::collectThermalReadings(inspection.profile, smc, services, &inspection.log);
    inspection.isSMCOpen = smc.conn != 0;
    inspection.keys = eachOnce(smc.getAllKeys());
    inspection.reads = std::exchange(smc.reads, {});
    smc.open();
    for (const auto& key : inspection.keys) {
        if (!inspection.reads.contains(key))
            smc.getValue(key);
    }
    for (const auto& key : wantedKeys) {
        if (isKey(key) && !inspection.reads.contains(key) && !smc.reads.contains(key))
            smc.getValue(key);
    }
    smc.close();
    inspection.laterReads = std::move(smc.reads);
}

} // namespace

Inspection inspect(const InspectedPlatform& platform, const std::vector<std::string>& wantedKeys)
{
    Inspection inspection;
    inspection.processorName = ZpSystemInfo::cpuBrandString();
    inspectSMC(platform.hidEventSystem, wantedKeys, inspection);
    inspection.report = profilerOutput(platform.processLauncher);
    if (inspection.report)
        inspection.devices = parseBluetoothReport(*inspection.report);
    inspection.companion = companionApplication(platform.bundle);
    inspection.watch = readWatchFile(platform.bundle);
    // Without a companion the file is not looked at.
    inspection.bluetooth = bluetoothReadings(
        inspection.devices, inspection.companion ? inspection.watch.entries : BluetoothBatteryDictionary());
    return inspection;
}

} // namespace orv
