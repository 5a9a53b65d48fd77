// usage: bench-endurance REFRESHES
// A server on the manual clock through sleep, wake, Bluetooth events and failing keys. Prints one JSON object: the heap
// and allocations in use and the open descriptors, early (the most in the refreshes after the first thousand) and late
// (in the last ones).

#include "bench/support/Allocations.h"
#include "bench/support/CatalogueMac.h"
#include "bluetooth/OrvBluetoothAppleWatch.h"
#include "bluetooth/OrvBluetoothSysProfile.h"
#include "platform/ProcessLauncher.h"
#include "service/OrvSMCHelperServer.h"
#include "service/ValueSink.h"
#include "simulated/ManualRunLoop.h"
#include "simulated/SimulatedPlatform.h"
#include "smc/SMC.h"
#include "thermal/OrvTemperatureFans.h"

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

using namespace orv;

namespace {

constexpr std::size_t warmUp = 1000;
constexpr std::size_t window = 9000; // holds every combination of what happens around a refresh

/// A profiler that reports another set of devices each time.
class ChangingProfiler final : public ProcessLauncher {
public:
    void start(const std::string&, const std::vector<std::string>&, std::function<void(std::string)> onExit) override
    {
        std::string report = R"({"SPBluetoothDataType": [{"device_connected": [)";
        for (std::size_t number = 0; number < runs % 5; ++number)
            report += std::string(number == 0 ? "" : ",") + R"({"Keyboard": {"device_address": "AA:BB:CC:DD:EE:0)"
                + std::to_string(number) + R"(", "device_batteryLevelMain": "85%"}})";
        onExit(++runs % 7 == 0 ? "not a report" : report + "]}]}");
    }

private:
    std::size_t runs = 0;
};

/// Lets exchanges of the machine behind it fail now and then.
class FailingHardware final : public Hardware {
public:
    explicit FailingHardware(Hardware& machine)
        : behind(machine)
    {
    }

    bool hasSMC() override { return behind.hasSMC(); }
    SMCOutcome keyInfo(std::uint32_t key, KeyInfo& info) override
    {
        return fails() ? SMCOutcome::failed() : behind.keyInfo(key, info);
    }
    SMCOutcome readBytes(std::uint32_t key, Bytes& bytes) override
    {
        return fails() ? SMCOutcome::failed() : behind.readBytes(key, bytes);
    }
    SMCOutcome keyAtIndex(std::uint32_t index, std::uint32_t& key) override { return behind.keyAtIndex(index, key); }
    std::optional<std::string> systemValue(const std::string& name) override { return behind.systemValue(name); }

private:
    bool fails() { return ++exchanges % 23 == 0; }

    Hardware& behind;
    std::size_t exchanges = 0;
};

MachineFile machineWithCompanion()
{
    std::string fault;
    auto machine = *parseMachine(CatalogueMac{}.text(), fault);
    machine.watchFile = R"({"watch-1": {"batteryLevel": 80, "history": [1, 2, 3]}})";
    return machine;
}

struct Usage {
    std::size_t allocations = 0;
    std::size_t heap = 0;
    std::ptrdiff_t descriptors = 0;

    void include(const Usage& other)
    {
        allocations = std::max(allocations, other.allocations);
        heap = std::max(heap, other.heap);
        descriptors = std::max(descriptors, other.descriptors);
    }
};

Usage usageNow()
{
    return {allocationsInUse(), mallinfo2().uordblks,
        std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {})};
}

class Life {
public:
    Life()
        : simulation(machineWithCompanion(), "org.orv.Endurance", runLoop, profiler)
        , hardware(simulation.mac)
    {
        setHardware(hardware);
        monitor = OrvBluetoothSysProfile::create(simulation.platform);
        watch = OrvBluetoothAppleWatch::create(simulation.platform);
        server.emplace(simulation.platform,
            ReadingSources{[this]() -> SMC& { return smc; }, [this]() -> const OrvTemperatureFans& { return profile; },
                [this]() -> OrvBluetoothSysProfile& { return *monitor; },
                [this]() -> OrvBluetoothAppleWatch& { return *watch; }});
    }

    /// One more refresh and what may happen around it.
    void refresh(std::size_t number)
    {
        if (number % 11 == 0)
            simulation.bluetoothEvents.connectDevice();
        if (number % 13 == 0)
            simulation.bluetoothEvents.changePairing();
        if (number % 17 == 0) {
            simulation.workspace.sleep();
            runLoop.advance(Seconds(60));
            simulation.workspace.wake();
            return;
        }
        runLoop.advance(Seconds(5));
        if (number % 5 == 0)
            reply();
    }

private:
    void reply() const
    {
        ValueSink sink;
        writeThermalReply(*server->smcData.take(), sink);
        writeBluetoothReply(*server->btData.take(), sink, propertyListLimits);
    }

    ManualRunLoop runLoop;
    ChangingProfiler profiler;
    SimulatedPlatform simulation;
    FailingHardware hardware;
    const OrvTemperatureFans profile;
    SMC smc;
    std::shared_ptr<OrvBluetoothSysProfile> monitor;
    std::shared_ptr<OrvBluetoothAppleWatch> watch;
    std::optional<OrvSMCHelperServer> server;
};

} // namespace

int main(int argumentCount, char** arguments)
{
    const std::size_t refreshes = argumentCount == 2 ? std::strtoul(arguments[1], nullptr, 10) : 0;
    if (refreshes < warmUp + 2 * window)
        return std::fputs("usage: bench-endurance REFRESHES (19000 at least)\n", stderr), 2;
    const auto start = std::chrono::steady_clock::now();
    Life life;
    Usage early;
    Usage late;
    for (std::size_t number = 1; number <= refreshes; ++number) {
        life.refresh(number);
        if (number > warmUp && number <= warmUp + window)
            early.include(usageNow());
        if (number > refreshes - window)
            late.include(usageNow());
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    std::printf("{\"allocations\": [%zu, %zu], \"heap\": [%zu, %zu], \"descriptors\": [%td, %td], \"seconds\": %.1f}\n",
        early.allocations, late.allocations, early.heap, late.heap, early.descriptors, late.descriptors, taken.count());
    return 0;
}
