// Proves that explanations are true: applies the change that each names to its machine and looks for the sensor in the
// real reply; where none is named, a good value must change nothing.
//
// usage: orv-explain-proof MACHINES [COUNT [FIRST]]
//   every sensor of every machine file in the folder MACHINES, and one sensor of each verdict of COUNT random machines
//   (10000 unless given), whose seeds begin at FIRST.

#include "tests/proof/ChangedMachine.h"
#include "tests/proof/RandomMachine.h"

#include "bluetooth/BluetoothReadings.h"
#include "bluetooth/OrvBluetoothAppleWatch.h"
#include "bluetooth/OrvBluetoothSysProfile.h"
#include "explain/BluetoothExplanation.h"
#include "explain/SensorExplanation.h"
#include "explain/WhatIf.h"
#include "service/Replies.h"
#include "service/ValueSink.h"
#include "simulated/ManualRunLoop.h"
#include "simulated/SimulatedPlatform.h"
#include "simulated/SimulatedProfiler.h"
#include "json/JSONWriter.h"

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

namespace {

using namespace orv;

/// A machine file brought to life.
struct Machine {
    explicit Machine(const MachineFile& given)
        : launcher(given.profilerOutput)
        , simulation(given, "", runLoop, launcher)
    {
    }

    ManualRunLoop runLoop;
    SimulatedProfiler launcher;
    SimulatedPlatform simulation;
};

Dictionary thermalReply(const MachineFile& given)
{
    Machine machine(given);
    SMC smc;
    const OrvTemperatureFans profile;
    ValueSink sink;
    writeThermalReply(Orv_SMCHelper::collectThermalReadings(profile, smc, machine.simulation.mac), sink);
    return *sink.take().as<Dictionary>();
}

Dictionary bluetoothReply(const MachineFile& given)
{
    Machine machine(given);
    const auto watch = OrvBluetoothAppleWatch::create(machine.simulation.platform);
    machine.runLoop.advance(Seconds(5));
    const auto monitor = OrvBluetoothSysProfile::create(machine.simulation.platform);
    machine.runLoop.runPending();
    ValueSink sink;
    writeBluetoothReply(bluetoothReadings(monitor->systemBlueToothDictionary, watch->systemBlueToothDictionary), sink,
        propertyListLimits);
    return *sink.take().as<Dictionary>();
}

Inspection inspectMachine(const MachineFile& given)
{
    Machine machine(given);
    machine.simulation.bundle.runCompanion();
    return inspect({machine.simulation.mac, machine.launcher, machine.simulation.bundle});
}

std::set<std::string> keysOf(const Dictionary& reply)
{
    std::set<std::string> keys;
    for (const auto& [key, value] : reply)
        keys.insert(key);
    return keys;
}

/// Proves one machine, and counts.
class Proof {
public:
    Proof(std::string machineName, const MachineFile& given, bool oneOfEach)
        : name(std::move(machineName))
        , machine(given)
        , isSampled(oneOfEach)
        , inspection(inspectMachine(given))
        , whatIf(inspection)
    {
    }

    int faults = 0;
    std::map<std::string, int> proved; // by verdict

    void run()
    {
        auto explanation = explain(inspection, Changes::leftOut);
        ReportOutcome outcome{};
        explanation.bluetooth = explainDevices(inspection, Changes::found, outcome);
        const auto thermal = keysOf(thermalReply(machine));
        const auto bluetooth = keysOf(bluetoothReply(machine));
        proveDivision(explanation);
        proveShown(explanation, thermal, bluetooth);
        for (auto& row : explanation.sensors) {
            if (isWanted(0, row.source, row.verdict))
                prove(row, thermal);
        }
        for (const auto& row : explanation.bluetooth) {
            if (isWanted(1, SensorSource::smc, row.verdict))
                proveChange(row, row.key, bluetoothReply);
        }
        for (const auto& row : explanation.watch) {
            if (isWanted(2, SensorSource::smc, row.verdict))
                proveChange(row, row.key, bluetoothReply);
        }
    }

private:
    void fail(const std::string& what)
    {
        ++faults;
        std::printf("%s: %s\n", name.c_str(), what.c_str());
    }

    bool isWanted(int kind, SensorSource source, Verdict verdict)
    {
        if (verdict == Verdict::shown)
            return false;
        return !isSampled || seen.insert({kind, source, verdict}).second;
    }

    // Nothing is left out, and nothing is there twice.
    void proveDivision(const Explanation& explanation)
    {
        std::multiset<std::string> smc;
        std::set<std::size_t> services;
        std::multiset<std::pair<const SensorTable*, std::string>> rows;
        for (const auto& row : explanation.sensors) {
            if (row.source == SensorSource::smc)
                smc.insert(row.key);
            else if (row.source == SensorSource::hid)
                services.insert(*row.service);
            else
                rows.insert({row.table, row.key});
        }
        Machine alive(machine);
        SMC connection;
        connection.open();
        const auto& listed = connection.getAllKeys();
        connection.close();
        const std::set<std::string> keys(listed.begin(), listed.end());
        if (std::set(smc.begin(), smc.end()) != keys || smc.size() != keys.size())
            fail("the listed keys are not divided");
        if (services.size() != (explanation.machine.isHIDAsked ? machine.hid.size() : 0))
            fail("the services are not divided");
        for (const auto* table : inspection.log.smcTables)
            proveRows(*table, rows, [&keys](const std::string& key) { return keys.contains(key); });
        if (inspection.log.hidTable)
            proveRows(*inspection.log.hidTable, rows,
                [this](const std::string& key) { return inspection.log.holders.contains(key); });
        if (!rows.empty())
            fail("there are rows of no table");
        std::set<std::tuple<std::size_t, std::string, std::size_t>> elements;
        for (const auto& row : explanation.bluetooth) {
            if (!elements.insert({row.part, row.list, row.element}).second)
                fail("an element of the report is there twice");
        }
    }

    template <typename IsPresent>
    void proveRows(
        const SensorTable& table, std::multiset<std::pair<const SensorTable*, std::string>>& rows, IsPresent isPresent)
    {
        for (const auto& entry : table.rows) {
            const std::string key(keyOf(entry));
            if (rows.erase({&table, key}) + (isPresent(key) ? 1 : 0) != 1)
                fail("the row " + key + " of the catalogue is not there once");
        }
    }

    void proveShown(
        const Explanation& explanation, const std::set<std::string>& thermal, const std::set<std::string>& bluetooth)
    {
        std::multiset<std::string> sensors;
        for (const auto& row : explanation.sensors) {
            if (row.verdict == Verdict::shown)
                sensors.insert(row.key);
        }
        std::multiset<std::string> devices;
        for (const auto& row : explanation.bluetooth) {
            if (row.verdict == Verdict::shown)
                devices.insert(row.key);
        }
        for (const auto& row : explanation.watch) {
            if (row.verdict == Verdict::shown)
                devices.insert(row.key);
        }
        if (sensors != std::multiset(thermal.begin(), thermal.end()))
            fail("what is shown of sensors is not the reply");
        if (devices != std::multiset(bluetooth.begin(), bluetooth.end()))
            fail("what is shown of devices is not the reply");
    }

    void prove(SensorRow& row, const std::set<std::string>& thermal)
    {
        row.change = changeFor(row, whatIf, inspection);
        if (row.change)
            return proveChange(row, row.key, thermalReply);
        const bool isHopeless = row.verdict == Verdict::notInCatalogue || row.verdict == Verdict::fanIndex
            || row.verdict == Verdict::fanLimit || row.verdict == Verdict::noFan
            || (row.verdict == Verdict::notListed && row.key.size() == 5)
            || (row.verdict == Verdict::otherSource && !inspection.log.hidTable->contains(row.key));
        if (!isHopeless)
            return fail(row.key + " is " + std::string(identifierOf(row.verdict)) + " and has no change");
        auto after = keysOf(thermalReply(withGoodValue(machine, row)));
        if (after != thermal)
            fail(row.key + " is " + std::string(identifierOf(row.verdict)) + ", but a good value changes something");
        ++proved[std::string(identifierOf(row.verdict))];
    }

    template <typename Row>
    void proveChange(const Row& row, const std::string& key, Dictionary (*reply)(const MachineFile&))
    {
        const auto expectation = changed(machine, row);
        const auto after = reply(expectation.machine);
        const auto* entry = after.find(expectation.key);
        const bool isThere =
            entry && (expectation.entry.empty() || writeJSON(*entry, KeyOrder::sorted) == expectation.entry);
        if (!isThere)
            fail((key.empty() ? "(no key)" : key) + " is " + std::string(identifierOf(row.verdict)) + ", but \""
                + describe(*row.change) + "\" does not show " + expectation.key);
        ++proved[std::string(identifierOf(row.verdict))];
    }

    const std::string name;
    const MachineFile& machine;
    const bool isSampled;
    const Inspection inspection;
    const WhatIf whatIf;
    std::set<std::tuple<int, SensorSource, Verdict>> seen;
};

struct Counts {
    int machines = 0;
    int faults = 0;
    std::map<std::string, int> proved;

    void prove(const std::string& name, const MachineFile& machine, bool isSampled)
    {
        Proof proof(name, machine, isSampled);
        proof.run();
        ++machines;
        faults += proof.faults;
        for (const auto& [verdict, count] : proof.proved)
            proved[verdict] += count;
    }

    int report() const
    {
        int all = 0;
        for (const auto& [verdict, count] : proved) {
            std::printf("  %-18s %d\n", verdict.c_str(), count);
            all += count;
        }
        std::printf("%d machines, %d changes proved, %d faults\n", machines, all, faults);
        return faults == 0 && machines > 0 ? 0 : 1;
    }
};

int proveFiles(const std::string& folder)
{
    Counts counts;
    std::set<std::filesystem::path> paths;
    for (const auto& file : std::filesystem::directory_iterator(folder))
        paths.insert(file.path());
    for (const auto& path : paths) {
        std::string fault;
        if (const auto recording = Recording::open(path.string(), fault))
            counts.prove(path.filename().string(), recording->machine(), false);
    }
    return counts.report();
}

int proveRandom(std::uint64_t first, std::uint64_t end, std::uint64_t step)
{
    Counts counts;
    for (auto seed = first; seed < end; seed += step)
        counts.prove("seed " + std::to_string(seed), randomMachine(seed), true);
    return counts.report();
}

// The calls to the hardware are the process's: each part has one of its own.
int proveInParts(std::uint64_t first, std::uint64_t count)
{
    const auto parts = std::max(1u, std::thread::hardware_concurrency());
    std::vector<pid_t> children;
    std::fflush(stdout);
    for (unsigned part = 0; part < parts; ++part) {
        const auto child = fork();
        if (child == 0)
            std::exit(proveRandom(first + part, first + count, parts));
        children.push_back(child);
    }
    int status = 0;
    for (const auto child : children) {
        int ended = 0;
        if (waitpid(child, &ended, 0) != child || !WIFEXITED(ended) || WEXITSTATUS(ended) != 0)
            status = 1;
    }
    return status;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    if (argumentCount < 2 || argumentCount > 4) {
        std::fprintf(stderr, "usage: orv-explain-proof MACHINES [COUNT [FIRST]]\n");
        return 2;
    }
    const auto count = argumentCount > 2 ? std::strtoull(arguments[2], nullptr, 10) : 10'000;
    const auto first = argumentCount > 3 ? std::strtoull(arguments[3], nullptr, 10) : 1;
    const int files = proveFiles(arguments[1]);
    const int random = count > 0 ? proveInParts(first, count) : 0;
    std::printf(files == 0 && random == 0 ? "Proved.\n" : "Not proved.\n");
    return files == 0 && random == 0 ? 0 : 1;
}
